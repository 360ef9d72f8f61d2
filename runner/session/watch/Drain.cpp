#include "session/watch/Drain.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "system/LastError.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kMostAtOnce = std::size_t{1} << 20;

void trim(KeptText& kept, std::size_t most) {
    if (kept.text.size() <= most) return;
    const std::size_t extra = kept.text.size() - most;
    kept.text.erase(0, extra);
    kept.leftOut += extra;
}

}  // namespace

Drain::Drain(std::size_t most, bool keepsEnd) : m_most(most), m_keepsEnd(keepsEnd) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throwLastError("no pipe");
    m_in = ends[0];
    m_out = ends[1];
    fcntl(m_in, F_SETFL, O_NONBLOCK);
}

Drain::~Drain() {
    if (m_in >= 0) close(m_in);
    closeWriter();
}

void Drain::closeWriter() {
    if (m_out >= 0) close(std::exchange(m_out, -1));
}

void Drain::fetch() {
    std::array<char, 65536> bytes;
    for (std::size_t fetched = 0; m_in >= 0 && fetched < kMostAtOnce;) {
        const ssize_t count = read(m_in, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return;
        if (count == 0) return void(close(std::exchange(m_in, -1)));
        keep({bytes.data(), static_cast<std::size_t>(count)});
        fetched += static_cast<std::size_t>(count);
    }
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
        if (m_kept.text.size() > 2 * m_most + kMostAtOnce) trim(m_kept, m_most);
    } else {
        const std::size_t room = m_most - m_kept.text.size();
        m_kept.text += bytes.substr(0, room);
        m_kept.leftOut += bytes.size() - std::min(bytes.size(), room);
    }
}

}  // namespace vexa::runner
