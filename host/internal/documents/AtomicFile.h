// AtomicFile: a file that is either replaced as a whole or stays as it was.
#pragma once

#include <filesystem>
#include <functional>
#include <string_view>

namespace cells::host {

// The bytes go to a temporary file beside the target, which takes the target's place in Commit,
// when they are on the disk. Whatever fails throws std::runtime_error with the file's name; without
// a Commit the temporary file is removed.
class AtomicFile {
public:
    explicit AtomicFile(std::filesystem::path const & target);
    AtomicFile(AtomicFile const &) = delete;
    AtomicFile & operator=(AtomicFile const &) = delete;
    ~AtomicFile();

    void Write(std::string_view bytes);
    void Commit();

    // Called before each step ("create", "write", "flush", "rename"); for tests, which throw here.
    static std::function<void(char const * step)> beforeStep;

private:
    void Step(char const * step) const;
    [[noreturn]] void Fail(char const * what) const;

    std::filesystem::path m_Target, m_Temporary;
    int m_File = -1;
};

} // namespace cells::host
