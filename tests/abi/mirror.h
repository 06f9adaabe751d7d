/// Calls virtual operations as a host built elsewhere does: by the number of their slot and with signatures
/// written down here by hand. A recording object behind the interface tells which operation answered.
///
/// Recording objects name no operation `override`, and the warnings about that are off in their sources: one
/// that left its interface, or came in with another signature, is to be found by the slot that answers, like
/// any other change.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "slot_table.h"

namespace slot_check {

/// Called by each operation of a recording object, with its name.
void answered(const std::string& operation);
/// The same, and gives the result of the operation.
template <class Value>
Value answer(const char* operation, Value value) {
    answered(operation);
    return value;
}
/// The same; fails the test when the arguments are not those that were passed.
void answerIf(const char* operation, bool argumentsArrived);
/// The names since the last call of this.
std::vector<std::string> takeAnswers();

/// Entry of a virtual operation in its class's table. A pointer to it holds the offset of the entry, in which
/// some platforms also set the lowest bit.
template <class Member>
std::size_t entryOf(Member operation) {
    std::uintptr_t word = 0;
    static_assert(sizeof operation == 2 * sizeof word);
    std::memcpy(&word, &operation, sizeof word);
    return (word & ~std::uintptr_t{1}) / sizeof(void*);
}

struct Operation {
    std::string name;
    std::size_t entry;
};
using Operations = std::vector<Operation>;

/// Stands between an interface and its recording object: an operation of the object that is none of the
/// interface's comes after this one.
template <class Interface>
class EndOf : public Interface {
  public:
    using Mirrored = Interface;
    using Interface::Interface;
    virtual void endOfTable() {}

  protected:
    ~EndOf() = default;
};

/// What a recording object looks like from outside.
struct Recorded {
    std::vector<std::string> slots;    ///< what stands in each
    std::vector<std::size_t> entries;  ///< where each stands in the compiler's table
    bool records = true;               ///< its operations call `answered`
    bool destructible = false;         ///< by anyone who holds the interface
    std::function<void*()> make;       ///< a new one on the heap; none when it is still abstract
    std::function<void(void*)> destroy;
};

/// Slots of a table from the entries of its operations. A destructor takes two entries, for an object and
/// for one on the heap, and can be told only from what is left over.
void layOut(Recorded& recorded, const Operations& operations, std::size_t size, bool hasDestructor);

/// A recording object with its end: it tells of its destruction and of giving its memory back.
template <class Recorder>
class Mortal final : public Recorder {
  public:
    using Recorder::Recorder;
    ~Mortal() { answered("destructor"); }
    static void* operator new(std::size_t size) { return ::operator new(size); }
    static void operator delete(void* memory) {
        answered("operator delete");
        ::operator delete(memory);
    }
};

/// `Recorder` derives from EndOf<Interface> and has a static `operations`; `args` are its constructor's.
template <class Recorder, class... Args>
Recorded recorded(const Args&... args) {
    Recorded result;
    result.destructible = std::is_destructible_v<typename Recorder::Mirrored>;
    layOut(result, Recorder::operations(), entryOf(&Recorder::endOfTable),
           std::has_virtual_destructor_v<typename Recorder::Mirrored>);
    if constexpr (!std::is_abstract_v<Recorder>) {
        result.make = [args...] { return static_cast<void*>(new Mortal<Recorder>(args...)); };
        result.destroy = [](void* object) { delete static_cast<Mortal<Recorder>*>(object); };
    }
    return result;
}

/// Calls the function at an entry of an object's table.
template <class Result, class... Args>
Result callEntry(void* object, std::size_t entry, Args... args) {
    void* const* table = nullptr;
    std::memcpy(&table, object, sizeof table);
    return reinterpret_cast<Result (*)(void*, Args...)>(table[entry])(object, std::forward<Args>(args)...);
}

/// One class: its row of the table and a recording object.
class Mirror {
  public:
    Mirror(const ClassSlots& slots, Recorded recorded);
    ~Mirror();
    Mirror(const Mirror&) = delete;
    Mirror& operator=(const Mirror&) = delete;

    /// Compares the order without calling anything; only if it holds is an object made and may slots be
    /// called.
    bool standsInOrder();

    /// Calls a slot: `mirror.slot<bool(int)>(3)(17)`. Fails the test when another operation answers.
    template <class Signature>
    auto slot(std::size_t number) {
        return Call<Signature>{*this, number};
    }

    /// Destroys an object through this slot, once in place and once with its memory.
    void destroys(std::size_t number);

    /// Fails the test for every slot of the table that was not called.
    void expectEverySlotCalled() const;

    /// The object, as the interface that is mirrored.
    template <class Interface>
    Interface& as() const {
        return *static_cast<Interface*>(m_object);
    }

  private:
    template <class Signature>
    struct Call;
    template <class Result, class... Args>
    struct Call<Result(Args...)> {
        Mirror& mirror;
        std::size_t number;

        Result operator()(Args... args) {
            mirror.before(number);
            const Check after{mirror, number};
            return callEntry<Result, Args...>(mirror.m_object, mirror.m_recorded.entries.at(number),
                                              std::forward<Args>(args)...);
        }
    };
    struct Check {
        const Mirror& mirror;
        std::size_t number;
        ~Check() { mirror.after(number); }
    };

    void before(std::size_t number);
    void after(std::size_t number) const;
    void expectAnswers(std::size_t number, const std::vector<std::string>& expected) const;

    const ClassSlots& m_slots;
    const Recorded m_recorded;
    void* m_object = nullptr;
    std::set<std::size_t> m_called;
};

/// Registers the mirror of a class of the table; a test runs it.
class MirrorOf {
  public:
    MirrorOf(const std::string& className, std::function<Recorded()> recorded,
             std::function<void(Mirror&)> calls);

    /// Mirror of a class; null when there is none.
    static const MirrorOf* find(const std::string& className);
    /// Names of all classes that have one.
    static std::set<std::string> classNames();

    /// Compares the order and calls every slot.
    void check(const ClassSlots& slots) const;

  private:
    std::function<Recorded()> m_recorded;
    std::function<void(Mirror&)> m_calls;
};

}  // namespace slot_check
