// The exceptions that leave the engine. All are thrown by value.
#pragma once

#include <exception>

class CArchiveException : public std::exception {
public:
    enum Cause { none, endOfFile, writeOnly, readOnly, badSchema };
    explicit CArchiveException(Cause cause) : m_cause(cause) {}
    char const * what() const noexcept override { return kTexts[m_cause]; }
    Cause const m_cause;

private:
    static constexpr char const * kTexts[] = {
        "archive failure", "the archive ends too early", "the archive is open for storing",
        "the archive is open for loading", "the archive holds no valid record"};
};

class CFileException : public std::exception {
public:
    enum Cause { none, fileNotFound, accessDenied, badSeek, generic };
    explicit CFileException(Cause cause) : m_cause(cause) {}
    char const * what() const noexcept override { return kTexts[m_cause]; }
    Cause const m_cause;

private:
    static constexpr char const * kTexts[] = {
        "file failure", "the file does not exist", "the file cannot be opened",
        "no such position in the file", "the file cannot be read or written"};
};

class CMemoryException : public std::exception {
public:
    char const * what() const noexcept override { return "out of memory"; }
};
