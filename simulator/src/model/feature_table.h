/// The features of one camera, or of the library itself, and their values.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "feature_row.h"
#include "result.h"

namespace simulator {

struct Feature {
    FeatureRow row;
    std::vector<FeatureValue> values;  ///< one, or one per entry of the selector
    IntRange intRange;
    FloatRange floatRange;
    bool removed = false;  ///< the client sees no such feature
    bool forced = false;   ///< the model no longer computes the value
};

/// Values by feature, as many of each as its selector has entries.
using FeatureValues = std::map<std::string, std::vector<FeatureValue>, std::less<>>;

/// Not synchronised: the owner's lock covers it.
class FeatureTable {
  public:
    explicit FeatureTable(std::vector<FeatureRow> rows);

    /// What a client sees: null for an unknown or removed name.
    Feature* find(std::string_view name);
    /// What the model sees: also removed features. The name must exist.
    Feature& at(std::string_view name);
    const Feature& at(std::string_view name) const;
    bool has(std::string_view name) const { return m_features.find(name) != m_features.end(); }

    /// The value that is selected now.
    FeatureValue& value(Feature& feature);
    const FeatureValue& value(const Feature& feature) const;
    std::int64_t integer(std::string_view name) const;
    double number(std::string_view name) const;
    bool flag(std::string_view name) const;
    /// Integer value under one entry of the selector, whatever is selected now.
    std::int64_t integer(std::string_view name, std::string_view selectorEntry) const;

    double number(std::string_view name, std::string_view selectorEntry) const;

    /// For values that the model computes: has no effect on a forced feature.
    void compute(std::string_view name, FeatureValue value);
    void compute(std::string_view name, std::string_view selectorEntry, FeatureValue value);
    /// For values that an event brings.
    void assign(std::string_view name, FeatureValue value);

    /// Is the value within range and on the increment, short enough, an enumeration's text an entry that is
    /// available? Turns that text into its number and rounds to the feature's grid.
    Result accept(const Feature& feature, FeatureValue& value) const;
    /// May the entry be chosen now?
    bool isAvailable(const Feature& feature, const EnumEntry& entry) const;
    /// Sets a value from its text form without any check but that the text has the form.
    Result force(std::string_view name, std::string_view text);
    /// From here on clients see no such feature.
    Result remove(std::string_view name);

    /// Values of the features that `chosen` picks, and back; ranges are not looked at.
    FeatureValues values(const std::function<bool(const FeatureRow&)>& chosen) const;
    void restore(const FeatureValues& values);

    /// Features that clients see, by name in alphabetical order.
    std::vector<const Feature*> visible() const;

  private:
    std::size_t slot(const Feature& feature) const;
    /// Null for an entry that the selector does not have.
    const FeatureValue* valueUnder(std::string_view name, std::string_view selectorEntry) const;

    std::map<std::string, Feature, std::less<>> m_features;
};

/// Null for an unknown name.
const EnumEntry* findEntry(const Feature& feature, std::string_view name);
/// Null for an unknown number.
const EnumEntry* findEntry(const Feature& feature, std::int64_t number);

/// Text form of a value: entries by name, raw bytes in hexadecimal digits, everything else as it is read.
std::string textOf(const Feature& feature, const FeatureValue& value);
/// Value of a text form; InvalidValue when the text has not the form.
Result valueOf(const Feature& feature, std::string_view text, FeatureValue& value);

/// The name of an enumeration's value; a text of the library that stays valid.
const char* entryName(const Feature& feature, const FeatureValue& value);

/// A copy of the text that stays valid for good.
const char* keptText(std::string_view text);

}  // namespace simulator
