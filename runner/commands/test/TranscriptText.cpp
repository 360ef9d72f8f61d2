#include "commands/test/TranscriptText.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "system/LastError.h"

namespace vexa::runner {
namespace {

int copyOf(int descriptor) {
    const int copy = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (copy < 0) throwLastError("no descriptor");
    return copy;
}

}  // namespace

void TranscriptText::tell(char kind, std::string_view text) { (kind == kExplainedNote ? m_explained : m_text) += text; }

std::string TranscriptText::ask(char, std::string_view text) {
    const std::string lines = printedLines(m_takePrinted());
    if (lines.empty()) return "";
    m_text += text;
    m_text += lines;
    return "y";
}

CaughtOutput::CaughtOutput() : m_out(copyOf(STDOUT_FILENO)), m_err(copyOf(STDERR_FILENO)) {
    std::fflush(stdout);
    dup2(m_printed.descriptor(), STDOUT_FILENO);
    dup2(m_printed.descriptor(), STDERR_FILENO);
}

CaughtOutput::~CaughtOutput() {
    std::fflush(stdout);
    dup2(m_out, STDOUT_FILENO);
    dup2(m_err, STDERR_FILENO);
    close(m_out);
    close(m_err);
}

KeptText CaughtOutput::take() const {
    KeptText printed{m_printed.text(), 0};
    m_printed.clear();
    return printed;
}

}  // namespace vexa::runner
