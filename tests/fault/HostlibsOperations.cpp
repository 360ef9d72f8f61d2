// The operations of the class libraries.
#include <utility>

#include "AllocationFaults.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/OutOfMemoryException.h"
#include "vexa/Scanner.h"
#include "vexa/VexaUtil.h"
#include "vexa/toolbox/Set.h"
#include "vexa/ui/TaskProgress.h"
#include "vexastandin/Host.h"

namespace vexa::tests {
namespace {

using toolbox::Set;

const std::string kLong = "a text of more than fifteen characters";

Set setOf(const std::string& text) {
    Set set;
    set.assign(text);
    return set;
}

std::string textOf(const Set& set) { return set.toString(); }

// Single members that do not adjoin, in descending order.
std::string descendingMembers(int count) {
    std::string text = "[" + std::to_string(2 * count);
    for (int i = count - 1; i > 0; --i) text += "," + std::to_string(2 * i);
    return text + "]";
}

void assigns(Attempt& a, const std::string& text) {
    Set set = setOf("[5,1-3]");
    std::string argument = text;
    a.changes([&] { set.assign(std::move(argument)); }, [&] { return textOf(set); });
}

template <class Change>
void changesSet(Attempt& a, const std::string& text, const Change& change) {
    const Set before = setOf(text);
    Set set(before);  // without spare capacity
    a.changes([&] { change(set); }, [&] { return textOf(set); });
}

void copiesHostSet(Attempt& a) {
    standin::Host host;
    host.setKeepsCalls(false);
    host.setChecking(false);
    Set_s* handle = VexaUtilSetAlloc();
    for (int i = 0; i < 10; ++i) VexaUtilSetInsert(handle, 5 * i, 5 * i + 2);
    a.makes([&] { return Set(handle); }, textOf);
    VexaUtilSetDealloc(&handle);
}

Scanner scannerOf(const std::string& text) {
    Scanner scanner;
    scanner.reset(text);
    return scanner;
}

std::string restOf(const Scanner& scanner) {
    Scanner copy(scanner);
    std::string rest;
    while (copy.hasNextChar()) rest += copy.nextChar();
    return rest;
}

template <class Take>
void takesToken(Attempt& a, const Take& take) {
    Scanner scanner = scannerOf("a-token-of-more-than-fifteen-characters] and more");
    std::string token;
    a.changes([&] { token = take(scanner); }, [&] { return token + '|' + restOf(scanner); });
}

std::string messageOf(const ExceptionBase& exception) { return exception.message(); }

template <class Exception>
void assignsException(Attempt& a) {
    Exception exception(kLong);
    const Exception other(kLong + kLong);
    a.changes([&] { exception = other; }, [&] { return exception.message(); });
}

struct QuietBar : ui::ProgressBarInterface {
    void start(const std::string& message) override { shown = message; }
    void finish() override { shown.clear(); }
    void setStatusMessage(const std::string& message) override { shown = message; }
    void setPercentDone(int percent) override { shown = kLong + std::to_string(percent); }
    bool isInterrupted() const override { return false; }

    std::string shown;
};

template <class Change>
void drives(Attempt& a, const Change& change) {
    const auto bar = std::make_shared<QuietBar>();
    ui::TaskProgress progress(bar, 10);
    a.changes([&] { change(progress); }, [&] { return bar->shown; });
}

const std::vector<std::string> kOutOfMemory = {"OutOfMemoryException"};

}  // namespace

std::vector<Operation> hostlibsOperations() {
    using E = ExceptionBase;
    return {
        {"Set(const Set&)",
         [](Attempt& a) {
             const Set set = setOf("[1,3]");
             a.makes([&] { return Set(set); }, textOf);
         }},
        {"Set(Set_s*)", copiesHostSet},
        {"Set::operator=", [](Attempt& a) { changesSet(a, "[1]", [other = setOf("[1,3]")](Set& s) { s = other; }); }},
        {"Set::assign", [](Attempt& a) { assigns(a, "[1-3,7]"); }, kOutOfMemory},
        {"Set::assign, of what is in no order", [](Attempt& a) { assigns(a, "[9,7-8,1-3]"); }, kOutOfMemory},
        {"Set::assign, of so much that it is sorted by digits", [](Attempt& a) { assigns(a, descendingMembers(300)); },
         kOutOfMemory},
        {"Set::assign, of a stepped range", [](Attempt& a) { assigns(a, "[0-400:2]"); }, kOutOfMemory},
        {"Set::assign, of what is refused", [](Attempt& a) { assigns(a, "[1,2,3 refused, with a message]"); },
         kOutOfMemory},
        {"Set::assign, of what is refused and long",
         [](Attempt& a) { assigns(a, "[1,2,3 refused" + std::string(100, '.')); }, kOutOfMemory},
        {"Set::toString",
         [](Attempt& a) {
             const Set set = setOf("[1,3,5,7,9,11,13,15-17]");
             a.makes([&] { return set.toString(); });
         }},
        {"Set::toString, of much",
         [](Attempt& a) {
             const Set set = setOf(descendingMembers(3000));
             a.makes([&] { return set.toString(); });
         }},
        {"Set::insert", [](Attempt& a) { changesSet(a, "[1-3,5-9]", [](Set& set) { set.insert(20); }); }},
        {"Set::insert, of what is refused",
         [](Attempt& a) { changesSet(a, "[1]", [](Set& set) { set.insert(9, 8); }); }},
        {"Set::insert, of what is negative",
         [](Attempt& a) { changesSet(a, "[1]", [](Set& set) { set.insert(-1); }); }},
        {"Set::erase", [](Attempt& a) { changesSet(a, "[1-3,5-9]", [](Set& set) { set.erase(7); }); }},
        {"Set::erase, of what is refused", [](Attempt& a) { changesSet(a, "[1]", [](Set& set) { set.erase(9, 8); }); }},

        {"Scanner(const Scanner&)",
         [](Attempt& a) {
             const Scanner scanner = scannerOf(kLong);
             a.makes([&] { return Scanner(scanner); }, restOf);
         }},
        {"Scanner::operator=",
         [](Attempt& a) {
             Scanner scanner = scannerOf("1");
             const Scanner other = scannerOf(kLong);
             a.changes([&] { scanner = other; }, [&] { return restOf(scanner); });
         }},
        {"Scanner::reset",
         [](Attempt& a) {
             Scanner scanner = scannerOf("1");
             a.changes([&] { scanner.reset(kLong); }, [&] { return restOf(scanner); });
         }},
        {"Scanner::nextToken", [](Attempt& a) { takesToken(a, [](Scanner& scanner) { return scanner.nextToken(); }); }},
        {"Scanner::nextToken, to a delimiter",
         [](Attempt& a) { takesToken(a, [](Scanner& scanner) { return scanner.nextToken("]"); }); }},

        {"ExceptionBase", [](Attempt& a) { a.makes([] { return E(kLong, false); }, messageOf); }},
        {"ExceptionBase, with a stack trace", [](Attempt& a) { a.makes([] { return E("short", true); }, messageOf); }},
        {"ExceptionBase(const ExceptionBase&)",
         [](Attempt& a) {
             const E e(kLong, true);
             a.makes([&] { return E(e); }, messageOf);
         }},
        {"ExceptionBase::operator=",
         [](Attempt& a) {
             E e("short", false);
             const E other(kLong, true);
             a.changes([&] { e = other; }, [&] { return e.message(); });
         }},
        {"InvalidArgumentException",
         [](Attempt& a) { a.makes([] { return InvalidArgumentException(kLong); }, messageOf); }},
        {"InvalidArgumentException::operator=", assignsException<InvalidArgumentException>},
        {"OutOfMemoryException", [](Attempt& a) { a.makes([] { return OutOfMemoryException(kLong); }, messageOf); }},
        {"OutOfMemoryException::operator=", assignsException<OutOfMemoryException>},

        {"TaskProgress, of no bar",
         [](Attempt& a) {
             a.makes([] { return ui::TaskProgress(nullptr, 1); }, [](const auto&) { return "accepted"; });
         }},
        {"TaskProgress::start", [](Attempt& a) { drives(a, [](auto& progress) { progress.start(kLong); }); }},
        {"TaskProgress::advance", [](Attempt& a) { drives(a, [](auto& progress) { progress.advance(5); }); }},
        {"TaskProgress::setStatusMessage",
         [](Attempt& a) { drives(a, [](auto& progress) { progress.setStatusMessage(kLong); }); }},
    };
}

}  // namespace vexa::tests
