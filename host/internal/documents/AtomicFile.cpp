#include "host/internal/documents/AtomicFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace cells::host {

std::function<void(char const * step)> AtomicFile::beforeStep;

void AtomicFile::Step(char const * step) const {
    if (beforeStep) beforeStep(step);
}

void AtomicFile::Fail(char const * what) const {
    throw std::runtime_error(m_Target.string() + ": " + what + ": " + std::strerror(errno));
}

// The place of a link's target is taken, not that of the link; a file that is replaced hands on its
// permissions.
AtomicFile::AtomicFile(std::filesystem::path const & target) {
    std::error_code ignored;
    m_Target = std::filesystem::weakly_canonical(target, ignored);
    if (m_Target.empty()) m_Target = target;
    Step("create");
    if (std::filesystem::exists(m_Target, ignored) &&
        !std::filesystem::is_regular_file(m_Target, ignored)) {
        m_File = ::open(m_Target.c_str(), O_WRONLY);
        if (m_File < 0) Fail("the file cannot be written");
        return;
    }
    std::string name = m_Target.string() + ".XXXXXX";
    m_File = ::mkstemp(name.data());
    if (m_File < 0) Fail("the file cannot be created");
    m_Temporary = name;
    struct stat old;
    mode_t const fresh = ::umask(0);
    ::umask(fresh);
    mode_t const mode = ::stat(m_Target.c_str(), &old) == 0 ? old.st_mode & 07777 : 0666 & ~fresh;
    if (::fchmod(m_File, mode) != 0) errno = 0; // the permissions of a private file stay
}

AtomicFile::~AtomicFile() {
    if (m_File >= 0) ::close(m_File);
    if (!m_Temporary.empty()) ::unlink(m_Temporary.c_str());
}

void AtomicFile::Write(std::string_view bytes) {
    Step("write");
    while (!bytes.empty()) {
        ssize_t const written = ::write(m_File, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) Fail("the file cannot be written");
        bytes.remove_prefix(std::size_t(written));
    }
}

void AtomicFile::Commit() {
    Step("flush");
    // A device has nothing to flush.
    if (::fsync(m_File) != 0 && !m_Temporary.empty()) Fail("the file cannot be written");
    int const file = m_File;
    m_File = -1;
    if (::close(file) != 0) Fail("the file cannot be written");
    if (m_Temporary.empty()) return;
    Step("rename");
    if (::rename(m_Temporary.c_str(), m_Target.c_str()) != 0) Fail("the file cannot be replaced");
    m_Temporary.clear();
    // The new entry of the folder reaches the disk too, where the system can do that.
    int const folder = ::open(m_Target.parent_path().c_str(), O_RDONLY);
    if (folder < 0) return;
    ::fsync(folder);
    ::close(folder);
}

} // namespace cells::host
