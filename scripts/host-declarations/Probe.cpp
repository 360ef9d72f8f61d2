// Prints what the headers of a host declare, a line each: kind, name and value with tabs between them. It is compiled
// once with the headers of this project and once with those of a host maker; compare.py writes Names.inc, which has
// the names of the C header, and compares what both print.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#include "support/VirtualSlots.h"
#include "vexa/AddOn.h"
#include "vexa/ExceptionBase.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/OutOfMemoryException.h"
#include "vexa/Scanner.h"
#include "vexa/VexaUtil.h"
#include "vexa/toolbox/Set.h"
#include "vexa/ui/ProgressBarInterface.h"
#include "vexa/ui/TaskProgress.h"

namespace {

// Who cannot do without an operation.
enum class Need_e { Library, AddOns };

template <class T>
std::string nameOfType() {
    const std::string_view function = __PRETTY_FUNCTION__;
    const std::size_t start = function.find("T = ") + 4;
    return std::string(function.substr(start, function.find_first_of(";]", start) - start));
}

template <class Value>
void print(const char* kind, const std::string& name, const Value& value) {
    std::cout << kind << '\t' << name << '\t' << value << '\n';
}

template <class Type>
void printType(const char* name) {
    const char* const sign = std::is_enum_v<Type> ? "an enumeration" : std::is_signed_v<Type> ? "signed" : "unsigned";
    print("type", name, std::string(sign) + " of " + std::to_string(sizeof(Type)) + " bytes");
}

template <class Type>
void printClass(const char* name) {
    print("size", name, std::to_string(sizeof(Type)) + " bytes");
}

constexpr char kAbsent[] = "absent";

void printOperation(Need_e need, const std::string& name, const std::string& value) {
    print(need == Need_e::Library ? "operation" : "offered", name, value);
}

// The slot of a class's virtual operation. `access` takes a null pointer to the class, and cannot be called if the
// class has no operation of this type.
template <class Class, class Access>
void printMember(Need_e need, const std::string& name, const Access& access) {
    if constexpr (std::is_invocable_v<Access, Class*>) {
        const std::ptrdiff_t slot = vexa::tests::slotOf(access(static_cast<Class*>(nullptr)));
        printOperation(need, name, "declared");
        if (slot >= 0) print("slot", name, slot);
    } else {
        printOperation(need, name, kAbsent);
    }
}

template <class Class, class... Arguments>
void printConstructor(Need_e need, const char* name, void (*)(Arguments...)) {
    printOperation(need, name, std::is_constructible_v<Class, Arguments...> ? "declared" : kAbsent);
}

}  // namespace

#define FUNCTION(name) print("function", #name, nameOfType<decltype(name)>());
#define ENUMERATOR(name) print("enumerator", #name, static_cast<long>(name));
#define FIELD(name)                     \
    print(                              \
        "field", "VexaAddOn_s::" #name, \
        "at byte " + std::to_string(offsetof(VexaAddOn_s, name)) + ", " + nameOfType<decltype(VexaAddOn_s::name)>());
#define MEMBER(need, type, name, result, signature)                                                             \
    printMember<type>(                                                                                          \
        Need_e::need, #type "::" #name #signature " -> " #result,                                               \
        [](auto* object) -> decltype(static_cast<result(std::remove_pointer_t<decltype(object)>::*) signature>( \
                             &std::remove_pointer_t<decltype(object)>::name)) {                                 \
            return &std::remove_pointer_t<decltype(object)>::name;                                              \
        });
#define CONSTRUCTOR(need, type, parameters) \
    printConstructor<type>(Need_e::need, #type "::" #type #parameters, static_cast<void(*) parameters>(nullptr));

using std::string;
using vexa::ExceptionBase;
using vexa::InvalidArgumentException;
using vexa::OutOfMemoryException;
using vexa::Scanner;
using vexa::toolbox::Set;
using vexa::ui::ProgressBarInterface;
using vexa::ui::TaskProgress;

namespace {

void printHostApi() {
#include "Names.inc"
    print("constant", "VEXA_ADDON_API_VERSION", VEXA_ADDON_API_VERSION);
    printType<VexaBoolean>("VexaBoolean");
    printType<VexaArbParam>("VexaArbParam");
    printType<GetValueReturnCode_e>("GetValueReturnCode_e");
    FIELD(apiVersion)
    FIELD(id)
    FIELD(title)
    FIELD(execute)
    FIELD(shutdown)
}

void printExceptions() {
    CONSTRUCTOR(Library, ExceptionBase, (const string&, bool))
    CONSTRUCTOR(Library, InvalidArgumentException, (const string&))
    CONSTRUCTOR(Library, OutOfMemoryException, (const string&))
    MEMBER(Library, ExceptionBase, what, const char*, () const)
    MEMBER(Library, ExceptionBase, cause, std::exception_ptr, () const)
    MEMBER(Library, ExceptionBase, message, const string&, () const)
    MEMBER(Library, ExceptionBase, printStackTrace, void, () const)
    MEMBER(Library, ExceptionBase, printStackTrace, void, (FILE*) const)
    print("base", "vexa::ExceptionBase", std::is_base_of_v<std::exception, ExceptionBase> ? "std::exception" : "none");
}

void printScanner() {
    CONSTRUCTOR(Library, Scanner, ())
    MEMBER(Library, Scanner, reset, void, (const string&))
    MEMBER(Library, Scanner, skipWhitespace, void, ())
    MEMBER(Library, Scanner, hasNextChar, bool, () const)
    MEMBER(Library, Scanner, hasNextChar, bool, (char) const)
    MEMBER(Library, Scanner, nextChar, char, ())
    MEMBER(Library, Scanner, hasNextToken, bool, () const)
    MEMBER(Library, Scanner, nextToken, string, ())
    MEMBER(Library, Scanner, hasNextToken, bool, (const string&) const)
    MEMBER(Library, Scanner, nextToken, string, (const string&))
    MEMBER(Library, Scanner, hasNextDoubleToken, bool, () const)
    MEMBER(Library, Scanner, nextDoubleToken, double, ())
    MEMBER(Library, Scanner, hasNextInt64Token, bool, () const)
    MEMBER(Library, Scanner, nextInt64Token, int64_t, ())
}

void printSet() {
    CONSTRUCTOR(Library, Set, ())
    CONSTRUCTOR(Library, Set, (const Set&))
    CONSTRUCTOR(Library, Set, (Set_s*))
    MEMBER(Library, Set, clear, void, ())
    MEMBER(Library, Set, assign, void, (string))
    MEMBER(Library, Set, toString, string, () const)
    MEMBER(AddOns, Set, operator=, Set&, (const Set&))
    MEMBER(AddOns, Set, isEmpty, bool, () const)
    MEMBER(AddOns, Set, size, uint64_t, () const)
    MEMBER(AddOns, Set, contains, bool, (int64_t) const)
    MEMBER(AddOns, Set, insert, void, (int64_t))
    MEMBER(AddOns, Set, insert, void, (int64_t, int64_t))
    MEMBER(AddOns, Set, erase, void, (int64_t))
    MEMBER(AddOns, Set, erase, void, (int64_t, int64_t))
}

void printProgress() {
    CONSTRUCTOR(Library, TaskProgress, (std::shared_ptr<ProgressBarInterface>, long))
    MEMBER(Library, ProgressBarInterface, start, void, (const string&))
    MEMBER(Library, ProgressBarInterface, finish, void, ())
    MEMBER(Library, ProgressBarInterface, setStatusMessage, void, (const string&))
    MEMBER(Library, ProgressBarInterface, setPercentDone, void, (int))
    MEMBER(Library, ProgressBarInterface, isInterrupted, bool, () const)
    MEMBER(AddOns, TaskProgress, start, void, (const string&))
    MEMBER(AddOns, TaskProgress, advance, void, (long))
    MEMBER(AddOns, TaskProgress, setStatusMessage, void, (const string&))
    MEMBER(AddOns, TaskProgress, isInterrupted, bool, () const)
    MEMBER(AddOns, TaskProgress, finish, void, ())
}

void printSizes() {
    printClass<ExceptionBase>("vexa::ExceptionBase");
    printClass<InvalidArgumentException>("vexa::InvalidArgumentException");
    printClass<OutOfMemoryException>("vexa::OutOfMemoryException");
    printClass<Scanner>("vexa::Scanner");
    printClass<Set>("vexa::toolbox::Set");
    printClass<ProgressBarInterface>("vexa::ui::ProgressBarInterface");
    printClass<TaskProgress>("vexa::ui::TaskProgress");
    print("type", "VexaAddOn_s", std::to_string(sizeof(VexaAddOn_s)) + " bytes");
}

}  // namespace

int main() {
    printHostApi();
    printExceptions();
    printScanner();
    printSet();
    printProgress();
    printSizes();
}
