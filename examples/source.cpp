// Data of a host's own behind formulas, and a carrier of its own: docs/links.md tells the rest.
#include "host/Links.h"
#include "platform/Utf.h"

#include <iostream>
#include <map>
#include <string>

namespace host = cells::host;

// Measured temperatures by town, which formulas read as =REMOTE("weather","Basel").
class Weather final : public host::Source {
public:
    bool Serves(std::string_view document) override { return document == "weather"; }

    int OnRemoteGetValue(CCRemoteRef const * ref, CCCellValue & value, int) override {
        auto const found = degrees.find(cells::ToUtf8(ref->item()));
        if (found == degrees.end()) return 0; // #REF!
        value.Set(found->second);
        return 1;
    }
    int OnRemoteGetItems(CCRemoteRef const *, CStringArray & items) override {
        for (auto const & [town, degree] : degrees) items.Add(cells::FromUtf8(town));
        return 1;
    }

    std::map<std::string, double> degrees = {{"Basel", 11.5}, {"Lyon", 14}};
};

// Takes requests for "far/..." elsewhere. Here that is another set of documents of this process;
// a network would go in its place.
class Post final : public host::Carrier {
public:
    explicit Post(host::Links & f) : far(f) {}
    bool Serves(std::string_view document) override { return document.starts_with("far/"); }
    bool Carry(CFile & request) override {
        int operation;
        CCRemoteRef ref;
        if (!CCTransportInterface::ReadRequest(request, operation, ref)) return false;
        bool const mayWrite = false;
        return far.Answer(request, mayWrite) && CCTransportInterface::IsReply(request, operation);
    }

private:
    host::Links & far;
};

int main() {
    host::Links far;
    host::Workbook prices("C");
    prices.Add("Sheet1").Enter("A1", "3.5");
    far.Open("far/prices.cvs", prices);

    host::Links links;
    Weather weather;
    Post post(far);
    links.Add(weather);
    links.Add(post);

    host::Workbook book("C");
    host::Sheet & sheet = book.Add("Sheet1");
    links.Open("report.cvs", book, host::ReadLinks::kYes);
    sheet.Enter("A1", "=REMOTE(\"weather\",\"Basel\")");
    sheet.Enter("A2", "=REMOTE(\"far/prices.cvs\",\"A1\")*2");
    sheet.Enter("A3", "=DBFIELDCOUNT(\"weather\",\"all\")");
    links.Recalculate();

    weather.degrees["Basel"] = 12; // a source that does not tell of changes
    links.Refresh(book);
    links.Recalculate();
    std::cout << sheet.Text("A1") << ' ' << sheet.Text("A2") << ' ' << sheet.Text("A3") << '\n';
    return sheet.Text("A1") == "12" && sheet.Text("A2") == "7" && sheet.Text("A3") == "2" ? 0 : 1;
}
