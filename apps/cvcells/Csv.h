// Comma and tab separated texts into a sheet and out of it.
#pragma once

#include "host/Sheet.h"

#include <stdexcept>
#include <string>

namespace cells::app {

// A file that cannot be taken: what() names file, line and column.
struct InputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

enum class TextFormat { kCsv, kTsv };

// By the extension: ".tsv" and ".tab" are tab separated, everything else comma separated.
TextFormat FormatOf(std::string const & path);

// The whole content of a file, or of standard input for "-".
std::string ReadFile(std::string const & path);
// Nothing is half written; "-" is standard output.
void WriteFile(std::string const & path, std::string const & content);

// Enters each field into its cell, as a user types it. The sheet is changed only when the whole
// text is sound.
void LoadText(cells::host::Sheet & sheet, std::string const & name, std::string const & content,
              TextFormat format);

// One field, quoted where it must be.
std::string QuoteField(std::string const & field, char separator);

} // namespace cells::app
