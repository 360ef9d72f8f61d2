#include "system/files/WholeOutput.h"

namespace vexa::runner {

WholeOutput::WholeOutput(const std::string& path) : m_path(path) {
    if (isStream(path)) {
        m_stream.emplace(path);
    } else {
        m_file.emplace(path);
    }
}

void WholeOutput::replace(std::string_view text) {
    if (m_file) return m_file->replace(text);
    m_stream->append(text);
    m_stream->close();
}

}  // namespace vexa::runner
