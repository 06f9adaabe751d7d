// The two functions by which the host finds the plug-in.
#include "zelt_gige_camera_plugin_creator.h"

#if defined(_WIN32)
#define ZELT_EXPORT extern "C" __declspec(dllexport)
#else
#define ZELT_EXPORT extern "C" __attribute__((visibility("default")))
#endif

ZELT_EXPORT const char* ZELT_getPluginDllName() {
    return zelt_gige_camera::kPluginName;
}

ZELT_EXPORT plugin_api::IfPluginCreator* ZELT_getPluginFactory() {
    static zelt_gige_camera::CameraPluginCreator creator;
    return &creator;
}
