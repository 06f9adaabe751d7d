#include "schema_check.h"

#include <algorithm>

namespace simulator {
namespace {

std::vector<std::string> keysOf(const Json& object) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : object.items()) keys.push_back(key);
    return keys;
}

bool hasType(const Json& value, const std::string& type) {
    if (type == "integer") return value.is_number_integer();
    return type == value.type_name();  // the others have the same names
}

std::string inWords(const std::string& type) {
    if (type == "integer") return "a whole number";
    return (type == "object" || type == "array" ? "an " : "a ") + type;
}

class Checker {
  public:
    explicit Checker(const Json& schema) : m_schema(schema) {}

    void check(const Json& rules, const Json& value, const Place& at) const {
        // The type first: the others rely on it.
        if (rules.contains("type")) checkType(rules["type"], value, at);
        // Then the keys: a misspelt one is not just missing.
        if (value.is_object()) checkKeys(rules, value, at);
        for (const auto& entry : rules.items()) {
            const std::string& keyword = entry.key();
            const auto row = std::find_if(std::begin(kKeywords), std::end(kKeywords),
                                          [&](const Keyword& known) { return keyword == known.name; });
            if (row == std::end(kKeywords)) throw std::logic_error("the schema has an unknown " + keyword);
            if (row->check != nullptr) (this->*row->check)(entry.value(), value, at);
        }
    }

  private:
    struct Keyword {
        const char* name;
        void (Checker::*check)(const Json& rule, const Json& value, const Place& at) const;
    };
    static const Keyword kKeywords[19];

    void follow(const Json& rule, const Json& value, const Place& at) const {
        check(m_schema.at(Place(rule.get<std::string>().substr(1))), value, at);
    }
    void checkType(const Json& rule, const Json& value, const Place& at) const {
        const Json types = rule.is_array() ? rule : Json::array({rule});
        std::string names;
        for (const Json& type : types) {
            if (hasType(value, type.get<std::string>())) return;
            names += (names.empty() ? "" : " or ") + inWords(type.get<std::string>());
        }
        refuse(at, written(value) + " is not " + names);
    }
    void checkEnum(const Json& rule, const Json& value, const Place& at) const {
        if (!value.is_string()) refuse(at, written(value) + " is not a string");
        if (std::find(rule.begin(), rule.end(), value) != rule.end()) return;
        refuseUnknown(at, at.back(), value.get<std::string>(), rule.get<std::vector<std::string>>());
    }
    void checkMinimum(const Json& rule, const Json& value, const Place& at) const {
        if (value < rule) refuse(at, written(value) + " is too small; the least is " + written(rule));
    }
    void checkAbove(const Json& rule, const Json& value, const Place& at) const {
        if (value <= rule) refuse(at, written(value) + " is too small; it must be above " + written(rule));
    }
    void checkMaximum(const Json& rule, const Json& value, const Place& at) const {
        if (value > rule) refuse(at, written(value) + " is too large; the most is " + written(rule));
    }
    void checkMultiple(const Json& rule, const Json& value, const Place& at) const {
        const bool fits = value.get<std::int64_t>() % rule.get<std::int64_t>() == 0;
        if (!fits) refuse(at, written(value) + " is not a multiple of " + written(rule));
    }
    void checkShortest(const Json& rule, const Json& value, const Place& at) const {
        const bool fits = value.get_ref<const std::string&>().size() >= rule.get<std::size_t>();
        if (!fits) refuse(at, "the text is empty");
    }
    void checkLongest(const Json& rule, const Json& value, const Place& at) const {
        const bool fits = value.get_ref<const std::string&>().size() <= rule.get<std::size_t>();
        if (!fits) refuse(at, written(value) + " is longer than " + written(rule) + " bytes");
    }
    void checkMost(const Json& rule, const Json& value, const Place& at) const {
        const bool fits = value.size() <= rule.get<std::size_t>();
        if (!fits) refuse(at, std::to_string(value.size()) + " are too many; the most is " + written(rule));
    }
    void checkFewest(const Json& rule, const Json& value, const Place& at) const {
        const bool fits = value.size() >= rule.get<std::size_t>();
        if (!fits) refuse(at, std::to_string(value.size()) + " are too few; the least is " + written(rule));
    }
    void checkItems(const Json& rule, const Json& value, const Place& at) const {
        for (std::size_t i = 0; i < value.size(); ++i) check(rule, value[i], at / i);
    }
    void checkRequired(const Json& rule, const Json& value, const Place& at) const {
        for (const Json& key : rule) {
            if (!value.contains(key.get<std::string>())) refuse(at, "the key " + key.dump() + " is missing");
        }
    }
    void checkKeys(const Json& rules, const Json& value, const Place& at) const {
        if (!rules.contains("additionalProperties")) return;
        static const Json kNone = Json::object();
        const Json& known = rules.contains("properties") ? rules["properties"] : kNone;
        const Json& others = rules["additionalProperties"];
        for (const auto& [key, member] : value.items()) {
            if (known.contains(key)) {
                check(known[key], member, at / key);
            } else if (others.is_object()) {
                check(others, member, at / key);
            } else {
                refuseUnknown(at / key, "key", key, keysOf(known));
            }
        }
    }

    const Json& m_schema;
};

const Checker::Keyword Checker::kKeywords[] = {
    {"title", nullptr},
    {"description", nullptr},
    {"$defs", nullptr},
    {"type", nullptr},        // above
    {"properties", nullptr},  // with the next, for every key of the value
    {"additionalProperties", nullptr},
    {"$ref", &Checker::follow},
    {"enum", &Checker::checkEnum},
    {"minimum", &Checker::checkMinimum},
    {"exclusiveMinimum", &Checker::checkAbove},
    {"maximum", &Checker::checkMaximum},
    {"multipleOf", &Checker::checkMultiple},
    {"minLength", &Checker::checkShortest},
    {"maxLength", &Checker::checkLongest},
    {"maxItems", &Checker::checkMost},
    {"maxProperties", &Checker::checkMost},
    {"minProperties", &Checker::checkFewest},
    {"items", &Checker::checkItems},
    {"required", &Checker::checkRequired},
};

}  // namespace

void checkSchema(const Json& schema, const Json& value) {
    Checker(schema).check(schema, value, Place());
}

}  // namespace simulator
