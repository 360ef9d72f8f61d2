#include "session/watch/Drain.h"

#include <utility>

namespace vexa::runner {
namespace {

constexpr std::size_t kSlack = std::size_t{1} << 20;  // the text is moved only after this many bytes

}  // namespace

void Drain::fetch() {
    constexpr const char* kWhat = "the output of the process for the add-ons cannot be read";
    if (m_pipe.reader.isOpen() && !requireAvailable(m_pipe.reader.get(), m_kept.text, kWhat)) m_pipe.reader.close();
    if (!m_keepsEnd || m_kept.text.size() > 2 * m_most + kSlack) trim();
}

KeptText Drain::take() {
    fetch();
    trim();
    return std::exchange(m_kept, {});
}

void Drain::trim() {
    if (m_kept.text.size() <= m_most) return;
    const std::size_t extra = m_kept.text.size() - m_most;
    m_kept.text.erase(m_keepsEnd ? 0 : m_most, extra);
    m_kept.leftOut += extra;
}

}  // namespace vexa::runner
