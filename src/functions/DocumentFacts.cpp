// Properties of the document.
#include "functions/Families.h"

namespace cells::internal {
namespace {

constexpr FunctionRow kRows[] = {
    {13246, L"CREATEDATE", L"", "", L"Date the document was created.", nullptr, nullptr,
     kDocumentFunc},
    {13247, L"EDITTIME", L"", "", L"Time spent on the document.", nullptr, nullptr, kDocumentFunc},
    {13248, L"PRINTDATE", L"", "", L"Date the document was last printed.", nullptr, nullptr,
     kDocumentFunc},
    {13249, L"SAVEDATE", L"", "", L"Date the document was last saved.", nullptr, nullptr,
     kDocumentFunc},
    {13250, L"AUTHOR", L"", "", L"Author of the document.", nullptr, nullptr, kDocumentFunc},
    {13251, L"COMMENTS", L"", "", L"Comments of the document.", nullptr, nullptr, kDocumentFunc},
    {13252, L"FILENAME", L"", "", L"File name of the document.", nullptr, nullptr, kDocumentFunc},
    {13253, L"FILESIZE", L"", "", L"Size of the document's file.", nullptr, nullptr, kDocumentFunc},
    {13254, L"KEYWORDS", L"", "", L"Keywords of the document.", nullptr, nullptr, kDocumentFunc},
    {13255, L"NUMCHARS", L"", "", L"Number of characters of the document.", nullptr, nullptr,
     kDocumentFunc},
    {13256, L"NUMPAGES", L"", "", L"Number of pages of the document.", nullptr, nullptr,
     kDocumentFunc},
    {13257, L"NUMWORDS", L"", "", L"Number of words of the document.", nullptr, nullptr,
     kDocumentFunc},
    {13258, L"SUBJECT", L"", "", L"Subject of the document.", nullptr, nullptr, kDocumentFunc},
    {13259, L"TITLE", L"", "", L"Title of the document.", nullptr, nullptr, kDocumentFunc},
    {13260, L"REVNUM", L"", "", L"Revision number of the document.", nullptr, nullptr,
     kDocumentFunc},
    {13261, L"PAGE", L"", "", L"Page on which the cell stands.", nullptr, nullptr, kDocumentFunc},
    {13262, L"MERGEREC", L"", "", L"Number of the present merge record.", nullptr, nullptr,
     kDocumentFunc},
    {13263, L"MERGECOUNT", L"", "", L"Number of merge records.", nullptr, nullptr, kDocumentFunc},
};

} // namespace

FunctionFamily DocumentFacts() { return MakeFamily(11, kRows); }

} // namespace cells::internal
