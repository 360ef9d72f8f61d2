#include "commands/test/OwnTranscript.h"

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

std::string TranscriptText::take(char kind, std::string_view text, const KeptText& printed) {
    if (kind == kTranscriptNote) m_text += text;
    if (kind == kExplainedNote) m_explained += text;
    const std::string lines = printedLines(printed);
    if (kind != kPrintedNote || lines.empty()) return "";
    m_text += text;
    m_text += lines;
    return "y";
}

OwnTranscript::OwnTranscript() : m_out(copyOf(STDOUT_FILENO)), m_err(copyOf(STDERR_FILENO)) {
    std::fflush(stdout);
    dup2(m_printed.descriptor(), STDOUT_FILENO);
    dup2(m_printed.descriptor(), STDERR_FILENO);
}

OwnTranscript::~OwnTranscript() {
    std::fflush(stdout);
    dup2(m_out, STDOUT_FILENO);
    dup2(m_err, STDERR_FILENO);
    close(m_out);
    close(m_err);
}

void OwnTranscript::tell(char kind, std::string_view text) { m_transcript.take(kind, text, {}); }

std::string OwnTranscript::ask(char kind, std::string_view text) {
    const KeptText printed{m_printed.text(), 0};
    m_printed.clear();
    return m_transcript.take(kind, text, printed);
}

}  // namespace vexa::runner
