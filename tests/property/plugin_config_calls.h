/// Sequences of calls on a plug-in configuration, each answer compared with a model of it.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "zeltpu_simple_plugin_config.h"

namespace property_tests {

class PluginConfigCalls {
  public:
    /// One call for every three bytes: which call, on which key, with which value. Ends at the first answer
    /// that differs from the model's.
    void run(std::span<const std::uint8_t> bytes);
    /// The first difference in words; empty without any.
    const std::string& difference() const { return m_difference; }

  private:
    void call(std::uint8_t what, const std::string& key, std::uint8_t value);
    void add(const std::string& key, std::uint8_t value);
    void set(const std::string& key, std::uint8_t value);
    void get(const std::string& key);
    void compareKeys();
    void expect(bool holds, const std::string& what);

    std::vector<std::string> m_keys;
    std::map<std::string, std::string> m_texts;
    std::map<std::string, std::vector<std::string>> m_constraints;
    std::string m_difference;
    zelt::plugin_util::SimplePluginConfig m_config;
};

}  // namespace property_tests
