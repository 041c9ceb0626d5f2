// Commands about a whole workbook: its locale, files, links and properties.
#include "cvcells/Documents.h"
#include "cvcells/Output.h"
#include "cvcells/session/Command.h"
#include "cvcells/session/Session.h"

#include <ostream>

namespace cells::app {
namespace {

using host::Property;

void SetLocale(Session & session, std::string & rest) { session.SetLocale(rest); }

void Load(Session & session, std::string & rest) {
    if (IsDocumentName(rest) || IsLegacyName(rest))
        return session.SetBook(LoadWorkbook({rest}, session.Locale()), rest, host::ReadLinks::kAsk);
    LoadText(session.CurrentSheet(), rest, ReadFile(rest), FormatOf(rest));
    session.ForgetChanges();
}

void Save(Session & session, std::string & rest) {
    if (rest.empty()) throw CommandError("save needs the name of a file");
    if (IsDocumentName(rest)) return session.GetBook().Save(rest);
    host::Sheet & sheet = session.CurrentSheet();
    if (IsLegacyName(rest)) return WriteLegacy(sheet, rest);
    host::Area const area{{0, 0}, sheet.UsedArea().value_or(host::Area{}).last};
    OutputFormat const format =
        FormatOf(rest) == TextFormat::kTsv ? OutputFormat::kTsv : OutputFormat::kCsv;
    WriteFile(rest, Render(sheet, area, format, Show::kFormulas));
}

void Refresh(Session & session, std::string &) { session.RefreshLinks(); }

void Link(Session & session, std::string & rest) {
    if (rest.empty()) throw CommandError("link needs the name of a file");
    session.AddLinks({.files = {rest}, .peers = {}});
}

void Peer(Session & session, std::string & rest) {
    session.AddLinks({.files = {}, .peers = {rest}});
}

void ListLinks(Session & session, std::string &) {
    std::ostream & out = session.Out();
    LinkSet & links = session.GetLinks();
    for (std::string const & name : links.Links().Documents()) out << name << '\n';
    for (std::string const & name : links.Databases()) out << name << " (database)\n";
    for (std::string const & name : links.Peers().Documents()) out << name << " (peer)\n";
}

void ListProperties(Session & session) {
    for (Property property : host::AllProperties())
        if (std::string const text = session.GetBook().GetProperty(property); !text.empty())
            session.Out() << host::NameOf(property) << ": " << text << '\n';
}

void ShowOrSetProperty(Session & session, std::string & rest) {
    std::string const name = TakeWord(rest);
    if (name.empty()) return ListProperties(session);
    auto const property = host::FindProperty(name);
    if (!property) throw CommandError("no such property: " + name);
    if (rest.empty()) {
        session.Out() << session.GetBook().GetProperty(*property) << '\n';
        return;
    }
    session.GetBook().SetProperty(*property, rest == "-" ? "" : rest);
    session.Edited();
}

void Idle(Session & session, std::string &) { session.Edited(); }

constexpr Command kRows[] = {
    {"locale", "locale TAG", "start an empty workbook in another locale, such as de-DE", SetLocale},
    {"load", "load FILE",
     "a workbook (.cvs) or a sheet of the older version (.cv15) as the\n"
     "workbook; comma or tab separated text into the present sheet",
     Load},
    {"save", "save FILE",
     "a workbook (.cvs), or the present sheet as comma or tab separated\n"
     "text or in the older version (.cv15), by extension",
     Save},
    {"link", "link FILE", "let formulas read another workbook, a text or a database", Link},
    {"peer", "peer SOCKET", "let formulas read what another process serves there", Peer},
    {"links", "links", "what can be read", ListLinks},
    {"refresh", "refresh", "read all links anew", Refresh},
    {"property", "property [NAME [TEXT]]",
     "what the workbook says of itself, such as its title; - is nothing", ShowOrSetProperty},
    {"idle", "idle", "bring everything up to date (edits do it by themselves)", Idle},
};

} // namespace

std::span<Command const> BookCommands() { return kRows; }

} // namespace cells::app
