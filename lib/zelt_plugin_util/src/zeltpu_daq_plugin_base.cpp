#include "zeltpu_daq_plugin_base.h"

#include <boost/uuid/string_generator.hpp>

#include "zeltpu_plugin_type_id.h"

namespace zelt::plugin_util {

DAQPluginBase::DAQPluginBase(std::uint32_t instanceIndex) : m_instance_index(instanceIndex) {}

std::uint32_t DAQPluginBase::getInstanceIndex() {
    return m_instance_index;
}

void DAQPluginBase::setInstanceIndex(std::uint32_t index) {
    m_instance_index = index;
}

boost::uuids::uuid DAQPluginBase::getPluginTypeId() {
    return boost::uuids::string_generator{}(kPluginTypeId);
}

void DAQPluginBase::enumerateDevices() {}

plugin_api::IfServiceFactory* DAQPluginBase::getServiceFactory() {
    return nullptr;
}

bool DAQPluginBase::isSupported2() {
    return true;
}

bool DAQPluginBase::isReadyForAcquisition() {
    return true;
}

bool DAQPluginBase::hasSystemTopology() {
    return false;
}

bool DAQPluginBase::onAcquisitionPrepared() {
    return true;
}

bool DAQPluginBase::onAcquisitionFinished() {
    return true;
}

}  // namespace zelt::plugin_util
