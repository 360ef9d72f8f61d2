#include <cstdio>
#include <string>

#include "vexa/AddOn.h"
#include "vexautilutil/ExecuteCommand.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"
#include "vexautilutil/TaskProgressBar.h"

namespace {

constexpr const char* kId = "PRIMES";

bool isPrime(int64_t number) {
    for (int64_t divisor = 2; divisor * divisor <= number; ++divisor) {
        if (number % divisor == 0) return false;
    }
    return number > 1;
}

// COUNT UPTO = 1000
class PrimeProcessor : public vexa::vexautilutil::MacroCommandProcessorAbstract {
public:
    bool processCommand() override {
        std::string word;
        std::string option;
        if (!getCommand(word) || word != "COUNT") return refuse("Expected COUNT, but found " + word);
        while (getNextName(option)) {
            if (option != "UPTO") return refuse("Unknown option " + option);
            if (!getInt64Value(m_limit)) return false;
            option.clear();
        }
        if (!option.empty()) return refuse("Expected = after " + option);
        if (m_limit < 2 || m_limit > 1000000) return refuse("UPTO must be from 2 to 1000000");

        if (!count()) return refuse("COUNT was stopped by the user");
        std::printf("%d primes up to %d\n", m_primes, static_cast<int>(m_limit));
        return recordMacroCommand(kId) || refuse("COUNT was not recorded");
    }

    bool composeCommandString(std::string& command) const override {
        command = "COUNT " + toNameValueAssignment("UPTO", m_limit);
        return true;
    }

private:
    // [task]
    bool count() {
        const auto progress = vexa::vexautilutil::createTaskProgressBar(m_limit);
        progress->start("Counting primes");
        for (int64_t number = 1; number <= m_limit; ++number) {
            if (number % 100 == 0 && progress->isInterrupted()) return false;
            if (isPrime(number)) ++m_primes;
            progress->advance();
        }
        return true;
    }
    // [task]

    bool refuse(const std::string& why) {
        depositErrorMessage("Error: " + why);
        return false;
    }

    int64_t m_limit = 1000;
    int m_primes = 0;
};

constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, kId, "Counts primes",
                                      vexa::vexautilutil::executeCommand<PrimeProcessor>, nullptr};

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) { return &kDescription; }
