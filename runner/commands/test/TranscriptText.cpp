#include "commands/test/TranscriptText.h"

namespace vexa::runner {

void TranscriptText::tell(char kind, std::string_view text) { (kind == kExplainedNote ? m_explained : m_text) += text; }

std::string TranscriptText::ask(char, std::string_view text) {
    const std::string lines = printedLines(m_takePrinted());
    if (lines.empty()) return "";
    m_text += text;
    m_text += lines;
    return "y";
}

KeptText CaughtOutput::take() const {
    KeptText printed{m_printed.text(), 0};
    m_printed.clear();
    return printed;
}

}  // namespace vexa::runner
