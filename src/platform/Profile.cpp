#include "platform/Profile.h"

#include "platform/Services.h"
#include "platform/Utf.h"

#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

namespace {

namespace fs = std::filesystem;
using Section = std::map<std::string, std::string>;
using Store = std::map<std::string, Section>;

struct ModuleProfile {
    CString key, section, name = L"CVCells";
};

ModuleProfile & Module() {
    static ModuleProfile module;
    return module;
}

std::string FromEnvironment(char const * name) {
    char const * value = std::getenv(name);
    return value ? value : "";
}

fs::path ConfigurationFolder() {
    if (cells::PlatformServices().profileFolder)
        return cells::ToUtf8(cells::PlatformServices().profileFolder());
    std::string const configured = FromEnvironment("XDG_CONFIG_HOME");
    if (!configured.empty()) return fs::path(configured) / "cvcells";
    return fs::path(FromEnvironment("HOME")) / ".config" / "cvcells";
}

// A key may hold separators; they do not lead out of the folder.
fs::path StorePath() {
    std::string name = cells::ToUtf8(Module().key.IsEmpty() ? Module().name : Module().key);
    for (char & c : name)
        if (c == '/' || c == '\\' || c == ':') c = '_';
    return ConfigurationFolder() / (name + ".ini");
}

std::string Escaped(std::string const & text) {
    std::string escaped;
    for (char c : text) {
        if (c == '\\')
            escaped += "\\\\";
        else if (c == '\n')
            escaped += "\\n";
        else
            escaped += c;
    }
    return escaped;
}

// A key ends at the first "=" without a "\\" before it, and a line that begins with "[" is a
// section.
std::string EscapedKey(std::string const & key) {
    std::string escaped;
    for (char c : Escaped(key)) {
        if (c == '=' || c == '[') escaped += '\\';
        escaped += c;
    }
    return escaped;
}

std::size_t EndOfKey(std::string const & line) {
    std::size_t at = 0;
    while (at < line.size() && line[at] != '=') at += line[at] == '\\' ? 2 : 1;
    return at;
}

std::string Unescaped(std::string const & text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            ++i;
            plain += text[i] == 'n' ? '\n' : text[i];
        } else {
            plain += text[i];
        }
    }
    return plain;
}

Store ReadStore() {
    Store store;
    std::ifstream file(StorePath());
    std::string line, section;
    while (std::getline(file, line)) {
        std::size_t const equals = EndOfKey(line);
        if (line.size() > 1 && line.front() == '[' && line.back() == ']')
            section = Unescaped(line.substr(1, line.size() - 2));
        else if (equals < line.size())
            store[section][Unescaped(line.substr(0, equals))] = Unescaped(line.substr(equals + 1));
    }
    return store;
}

bool WriteStore(Store const & store) {
    std::error_code failure;
    fs::path const path = StorePath();
    fs::create_directories(path.parent_path(), failure);
    fs::path temporary = path;
    temporary += ".new";
    {
        std::ofstream file(temporary, std::ios::trunc);
        for (auto const & [section, keys] : store) {
            file << '[' << Escaped(section) << "]\n";
            for (auto const & [key, value] : keys)
                file << EscapedKey(key) << '=' << Escaped(value) << '\n';
        }
        file.flush();
        if (!file) return false;
    }
    fs::rename(temporary, path, failure);
    return !failure;
}

std::string Narrow(wchar_t const * text) { return cells::ToUtf8(CString(text)); }

} // namespace

void InitModuleRegistry(CString const & key) { Module().key = key; }

void SetModuleProfile(CString const & key, CString const & section) {
    Module().key = key;
    Module().section = section;
}

CString GetModuleProfileKey() { return Module().key; }
CString GetModuleProfileSection() { return Module().section; }
CString GetModuleProfileName() { return Module().name; }

CString GetModuleProfileString(wchar_t const * section, wchar_t const * key,
                               wchar_t const * fallback) {
    Store const store = ReadStore();
    auto const keys = store.find(Narrow(section));
    if (keys == store.end()) return CString(fallback);
    auto const value = keys->second.find(Narrow(key));
    return value == keys->second.end() ? CString(fallback) : cells::FromUtf8(value->second);
}

int GetModuleProfileInt(wchar_t const * section, wchar_t const * key, int fallback) {
    std::string const text = cells::ToUtf8(GetModuleProfileString(section, key, nullptr));
    int value = fallback;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

int WriteModuleProfileString(wchar_t const * section, wchar_t const * key, wchar_t const * value) {
    Store store = ReadStore();
    if (!key)
        store.erase(Narrow(section));
    else if (!value)
        store[Narrow(section)].erase(Narrow(key));
    else
        store[Narrow(section)][Narrow(key)] = Narrow(value);
    return WriteStore(store);
}

int WriteModuleProfileInt(wchar_t const * section, wchar_t const * key, int value) {
    return WriteModuleProfileString(section, key, cells::FromUtf8(std::to_string(value)));
}
