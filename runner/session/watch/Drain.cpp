#include "session/watch/Drain.h"

#include <algorithm>
#include <utility>

namespace vexa::runner {
namespace {

constexpr std::size_t kSlack = std::size_t{1} << 20;  // so that not each fetch moves the text

void trim(KeptText& kept, std::size_t most) {
    if (kept.text.size() <= most) return;
    const std::size_t extra = kept.text.size() - most;
    kept.text.erase(0, extra);
    kept.leftOut += extra;
}

}  // namespace

void Drain::fetch() {
    if (!m_pipe.reader.isOpen()) return;
    std::string bytes;
    if (!readAvailable(m_pipe.reader.get(), bytes)) m_pipe.reader.close();
    keep(bytes);
}

KeptText Drain::take() {
    fetch();
    KeptText taken = std::exchange(m_kept, {});
    trim(taken, m_most);
    return taken;
}

void Drain::keep(std::string_view bytes) {
    if (m_keepsEnd) {
        m_kept.text += bytes;
        if (m_kept.text.size() > 2 * m_most + kSlack) trim(m_kept, m_most);
    } else {
        const std::size_t room = m_most - m_kept.text.size();
        m_kept.text += bytes.substr(0, room);
        m_kept.leftOut += bytes.size() - std::min(bytes.size(), room);
    }
}

}  // namespace vexa::runner
