#include "countable.h"

namespace uni {
namespace {

constinit std::atomic<const CountedType*> s_newest{nullptr};

}  // namespace

void registerCountedType(CountedType& type) noexcept {
    const CountedType* newest = s_newest.load();
    do {
        type.next = newest;
    } while (!s_newest.compare_exchange_weak(newest, &type));
}

std::map<std::string, CountReader> getCountedTypes() {
    std::map<std::string, CountReader> types;
    for (const CountedType* type = s_newest.load(); type != nullptr; type = type->next) {
        types.insert_or_assign(type->name, type->read);
    }
    return types;
}

}  // namespace uni
