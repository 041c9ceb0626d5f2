// Carrier and Source: whoever answers for documents that formulas name, beside open workbooks.
//
// A host that has data of its own derives from Source and answers the requests that it knows;
// examples/source.cpp is one. A host that reaches documents in its own way, over a network say,
// derives from Carrier and moves the bytes. Both are added to a Links.
#pragma once

#include "context/CCTransportInterface.h"
#include "formula/CCRemoteRef.h"
#include "platform/CFile.h"
#include "values/CCCellValue.h"

#include <string_view>

namespace cells::host {

class LinkTable;

class CVCELLS_API Carrier {
public:
    Carrier() = default;
    Carrier(Carrier const &) = delete;
    Carrier & operator=(Carrier const &) = delete;
    virtual ~Carrier(); // leaves the Links that it was added to
    // Whether it answers for a document under this name, as the formula spells it.
    virtual bool Serves(std::string_view document) = 0;
    // Answers a request, which stands at the begin of the file: true when the reply stands there
    // instead. What comes from outside the process is tested with CCTransportInterface::IsReply
    // first.
    virtual bool Carry(CFile & request) = 0;
    // Called when all open documents are up to date, for what could not be done before.
    virtual void OnQuiet() {}

private:
    friend class LinkTable;
    LinkTable * m_pTable = nullptr;
};

// Data that is no workbook. It overrides those OnRemote... operations that it can answer: for plain
// reading OnRemoteGetValue; for formulas that take many values OnRemoteOpenRef, OnRemoteRefSize,
// OnRemoteNextValue and OnRemoteCloseRef; for the catalogue functions OnRemoteGetDataSources and
// OnRemoteGetItems.
class CVCELLS_API Source : public Carrier, public CCTransportInterface {
public:
    bool Carry(CFile & request) override;
    cells::CTX * ctx() override;
    cells::CTX * ctx() const override;
};

// As of texts in 16-bit units (formula/CCRemoteRef.h).
CVCELLS_API bool IsDocumentCalled(std::string_view path, std::string_view name);

} // namespace cells::host
