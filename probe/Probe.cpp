#include "probe/Probe.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "probe/FactsFile.h"
#include "probe/Interview.h"

namespace vexa::probe {
namespace {

namespace fs = std::filesystem;
using facts::Fact;

// A second add-on shows which of two add-ons is shut down first.
constexpr const char* kNeedsTwo = "needs a second probe: load vexa-probe-second.so, and run VEXAPROBE2 WATCH";
constexpr const char* kNeedsFailure = "needs the command VEXAPROBE FAIL, and another command after it";
constexpr const char* kNeedsShutdown = "written when the host shuts the add-on down";

std::vector<std::string> wordsOf(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

// What only the following commands or the shutdown show.
void expectLater(FactsFile& facts) {
    const auto expect = [&](Fact fact, const char* reason) {
        if (!facts.isAnswered(fact)) facts.set(fact, NoAnswer{reason});
    };
    expect(Fact::MacroGoesOnAfterFailure, kNeedsFailure);
    expect(Fact::ShutdownOrder, kNeedsTwo);
    expect(Fact::ThreadShutdownIsLoading, kNeedsShutdown);
    if (!facts.isAnswered(Fact::ShutdownIsCalled)) facts.set(Fact::ShutdownIsCalled, false);
}

void setOrder(FactsFile& facts, const Shutdown& mine) {
    auto& shutdowns = facts.shutdowns;
    const auto isOfOther = [&](const Shutdown& shutdown) { return shutdown.process != mine.process; };
    shutdowns.erase(std::remove_if(shutdowns.begin(), shutdowns.end(), isOfOther), shutdowns.end());
    if (shutdowns.empty()) {
        shutdowns.push_back(mine);
        return;
    }
    const bool isLastLoadedFirst = shutdowns.front().loadedAt > mine.loadedAt;
    facts.set(Fact::ShutdownOrder, std::string(isLastLoadedFirst ? "lastLoadedFirst" : "firstLoadedFirst"));
    shutdowns.clear();
}

}  // namespace

Probe::Probe(const char* addOnId, AddOnList_s* self) {
    m_circumstances.addOnId = addOnId;
    m_circumstances.identity = self;
    m_circumstances.loadingThread = std::this_thread::get_id();
    m_circumstances.loadedAt = std::chrono::steady_clock::now();
}

void Probe::startCommand(const char* text) {
    m_circumstances.command = text;
    if (!m_hasFailed) return;
    m_hasFailed = false;
    FactsFile facts(m_file);
    facts.set(Fact::MacroGoesOnAfterFailure, true);
    facts.write();
}

void Probe::write(const std::string& file, const std::string& setting, bool isRisky) {
    FactsFile facts(file);
    expectLater(facts);
    m_circumstances.setting = wordsOf(setting);
    interview(facts, m_circumstances, isRisky);
    m_file = fs::absolute(file);
}

void Probe::watch(const std::string& file) {
    if (!fs::exists(file)) throw std::runtime_error(file + ": cannot be read: there is no such file; WRITE it first");
    const FactsFile readable(file);
    m_file = fs::absolute(file);
}

void Probe::noteFailure() {
    if (m_file.empty()) return;
    FactsFile facts(m_file);
    facts.set(Fact::MacroGoesOnAfterFailure, false);
    facts.write();
    m_hasFailed = true;
}

void Probe::shutDown() noexcept {
    try {
        if (!m_file.empty()) noteShutdown();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vexa-probe: %s\n", error.what());
    }
}

void Probe::noteShutdown() const {
    FactsFile facts(m_file);
    facts.set(Fact::ShutdownIsCalled, true);
    facts.set(Fact::ThreadShutdownIsLoading, std::this_thread::get_id() == m_circumstances.loadingThread);
    setOrder(facts, {getpid(), m_circumstances.loadedAt.time_since_epoch().count()});
    facts.write();
}

}  // namespace vexa::probe
