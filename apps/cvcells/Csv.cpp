#include "cvcells/Csv.h"

#include "host/internal/documents/AtomicFile.h"

#include "platform/Utf.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <csv.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string_view>
#include <vector>

namespace cells::app {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(std::string const & name, std::size_t line, std::size_t column,
                       std::string const & what) {
    throw InputError(name + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " +
                     what);
}

// After the line that begins at `at` and its end, which is LF, CR LF or CR.
std::size_t EndOfLine(std::string const & content, std::size_t at) {
    std::size_t const end = std::min(content.find_first_of("\r\n", at), content.size());
    return std::min(end + (content.compare(end, 2, "\r\n") == 0 ? 2 : 1), content.size());
}

void RequireUtf8(std::string const & name, std::string const & content) {
    std::size_t const bad = FindInvalidUtf8(content);
    if (bad == content.size()) return;
    std::size_t line = 1, start = 0;
    for (std::size_t end; (end = EndOfLine(content, start)) <= bad; start = end) ++line;
    Fail(name, line, bad - start + 1, "the text is not UTF-8");
}

struct Field {
    host::Place place;
    std::string text;
};

// Collects the fields that the parser calls out.
struct Collector {
    std::string name;
    std::size_t line = 1;
    host::Place next{0, 0};
    std::vector<Field> fields;
    std::string failure;
    std::size_t failedField = 0;
    int rowEnd = 0; // the character that was told last

    void Take(char const * text, std::size_t size) {
        if (size > 0 && failure.empty()) {
            if (next.column >= host::kColumns)
                failure = "more than 256 columns";
            else if (next.row >= host::kRows)
                failure = "more than 65536 rows";
            else
                fields.push_back({next, std::string(text, size)});
            if (!failure.empty()) failedField = std::size_t(next.column) + 1;
        }
        ++next.column;
    }
    // Both characters of CR LF are told, and end one row.
    void EndRow(int end) {
        bool const isSecond = end == '\n' && rowEnd == '\r' && next.column == 0;
        rowEnd = end;
        if (isSecond) return;
        next.column = 0;
        ++next.row;
    }
};

int KeepBlanks(unsigned char) { return 0; }

// The parser of libcsv, released with the object.
struct Parser {
    csv_parser parser;
    explicit Parser(char separator) {
        if (csv_init(&parser, CSV_REPALL_NL | CSV_APPEND_NULL) != 0) throw std::bad_alloc();
        csv_set_delim(&parser, static_cast<unsigned char>(separator));
        csv_set_space_func(&parser, KeepBlanks);
    }
    Parser(Parser const &) = delete;
    Parser & operator=(Parser const &) = delete;
    ~Parser() { csv_free(&parser); }
};

void OnField(void * text, std::size_t size, void * data) {
    static_cast<Collector *>(data)->Take(static_cast<char const *>(text), size);
}

void OnRow(int end, void * data) { static_cast<Collector *>(data)->EndRow(end); }

void Collect(Collector & collector, std::string const & content, char separator) {
    Parser csv(separator);
    for (std::size_t at = 0; at < content.size(); ++collector.line) {
        std::size_t const end = EndOfLine(content, at);
        std::size_t const taken =
            csv_parse(&csv.parser, content.data() + at, end - at, OnField, OnRow, &collector);
        if (taken != end - at)
            Fail(collector.name, collector.line, taken + 1, csv_strerror(csv_error(&csv.parser)));
        if (!collector.failure.empty())
            Fail(collector.name, collector.line, collector.failedField, collector.failure);
        at = end;
    }
    if (csv.parser.quoted) Fail(collector.name, collector.line, 1, "a quoted field does not end");
}

} // namespace

TextFormat FormatOf(std::string const & path) {
    std::string const extension = fs::path(path).extension().string();
    return extension == ".tsv" || extension == ".tab" ? TextFormat::kTsv : TextFormat::kCsv;
}

std::string ReadFile(std::string const & path) {
    if (path == "-") return {std::istreambuf_iterator<char>(std::cin), {}};
    if (fs::is_directory(path)) throw InputError(path + ": is a folder");
    std::ifstream file(path, std::ios::binary);
    if (!file) throw InputError(path + ": " + std::strerror(errno));
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFile(std::string const & path, std::string const & content) {
    if (path == "-") {
        std::cout << content << std::flush;
        return;
    }
    try {
        host::AtomicFile file(path);
        file.Write(content);
        file.Commit();
    } catch (std::runtime_error const & failure) {
        throw InputError(failure.what());
    }
}

void LoadText(host::Sheet & sheet, std::string const & name, std::string const & content,
              TextFormat format) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    std::string text =
        content.substr(content.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
    RequireUtf8(name, text);
    // A line's end closes every field but an open quoted one.
    if (!text.ends_with('\n') && !text.ends_with('\r')) text += '\n';
    Collector collector{name, 1, {0, 0}, {}, {}};
    Collect(collector, text, format == TextFormat::kTsv ? '\t' : ',');
    host::Sheet::Bulk bulk(sheet);
    for (Field const & field : collector.fields) bulk.Enter(field.place, field.text);
    bulk.Commit();
}

std::string QuoteField(std::string const & field, char separator) {
    bool const plain = field.find_first_of(std::string("\"\r\n") + separator) == std::string::npos;
    if (plain) return field;
    std::string quoted = "\"";
    for (char c : field) {
        if (c == '"') quoted += '"';
        quoted += c;
    }
    return quoted + '"';
}

} // namespace cells::app
