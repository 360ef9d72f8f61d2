#include "session/watch/UncaughtErrors.h"

#include <cstdio>
#include <exception>
#include <new>
#include <string>
#include <system_error>

#include "options/ExitStatus.h"
#include "system/files/OutputTarget.h"
#include "system/processes/AwaitedSignals.h"
#include "terminal/Console.h"

namespace vexa::runner {

int printUncaughtErrors(const std::function<int()>& work) {
    try {
        return work();
    } catch (const EndedBySignal&) {
        throw;
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "%s: out of memory\n", kProgramName);
    } catch (const OutputError& error) {
        tell(error.what());
    } catch (const std::system_error& error) {
        tell(kProgramName, error.what());
    } catch (const std::exception& error) {
        const char* const text = error.what();
        tell(kProgramName, std::string("unexpected error: ") + (text == nullptr ? "no message" : text));
    } catch (...) {
        std::fprintf(stderr, "%s: unexpected error\n", kProgramName);
    }
    return static_cast<int>(ExitStatus_e::BadUsageOrInput);
}

}  // namespace vexa::runner
