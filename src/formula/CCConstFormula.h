// CCConstFormula: a constant. CCConstArrayFormula: a rectangle of constants, row by row.
#pragma once

#include "formula/CCFormula.h"
#include "platform/NodePool.h"
#include "values/CCCellValue.h"
#include "values/ValueLists.h"

#include <vector>

namespace cells::internal {

// What constants have in common: they refer to nothing, so that most operations do nothing.
class CVCELLS_API ConstantFormula : public CCFormula {
public:
    using CCFormula::CCFormula;
    int IsEditSourceRef(CTX *, CCRef const *) const override { return 0; }
    CCRef const * GetEditSourceRef(CTX *, CCRef const *) const override { return nullptr; }
    int ContainsLink(CTX *, CCRef const *, CCRef const *) const override { return 0; }
    int ContainsRemoteLinks() override { return 0; }
    int ContainsTodayLinks() override { return 0; }
    int RegisterDependents(CTX *, CCRef const *) const override { return 1; }
    void UnRegisterDependents(CTX *, CCRef const *) const override {}
    int InvalidateRef(CTX *, CCRef const *, CCFormula *& out, CCRef const *) override;
    int InvalidateItem(CTX *, CCItem const *, CCFormula *& out, CCRef const *) override;
    void MoveFormula(CTX *, CCRef const *, CCRef const *) override {}
    void UpdateInPaste(CTX *, CCRef const *, CCRef const *, CCClipboardData const *) override {}
    int UpdateRef(CTX *, CCRef const *, CCRef const *, CCRef const *, int,
                  CCFormula *& out) override;
    void Print2File(CTX * ctx, std::wostream & stream, uchar priority) const override;
};

} // namespace cells::internal

class CVCELLS_API CCConstFormula : public cells::internal::ConstantFormula,
                                   public cells::internal::Pooled<CCConstFormula> {
public:
    CCConstFormula() : ConstantFormula(kConstFormula) {}
    explicit CCConstFormula(CCCellValue const & constant)
        : ConstantFormula(kConstFormula), m_Value(constant) {}
    explicit CCConstFormula(int error) : ConstantFormula(kConstFormula), m_Value(error) {}
    CCConstFormula(double) = delete;
    CCConstFormula(CCConstFormula const & other) : ConstantFormula(other), m_Value(other.m_Value) {}
    // Takes the constant; a walk over this node goes on with it.
    CCConstFormula & operator=(CCConstFormula const & other) {
        m_Value = other.m_Value;
        return *this;
    }

    CCCellValue const & GetValue() const { return m_Value; }
    bool IsOpen() const { return m_nOpen != 0; }

    int GetType() const override { return kConstFormula; }
    CCFormula * Copy() const override { return new CCConstFormula(*this); }
    int Check(cells::CTX *, CCRef const *) const override { return 0; }
    void Eval(cells::CTX *, CCCellValue & value, CCRef const *) const override {
        value.Set(m_Value);
    }
    void Print(cells::CTX * ctx, std::wostream & stream, uchar priority) const override;
    int IsSingleValue(cells::CTX *, CCRef const *) override { return 1; }
    ushort OpenRef(cells::CTX * ctx, CCRef const * current) override;
    int NextValue(cells::CTX * ctx, ushort handle, CCCellValue & value,
                  CCRef const * current) override;
    int RefSize(cells::CTX * ctx, ushort handle, CSize & size, CCRef const * current) override;
    int CloseRef(cells::CTX * ctx, ushort handle, CCRef const * current) override;
    void Read(cells::CTX * ctx, CArchive & ar) override;
    void Write(cells::CTX * ctx, CArchive & ar) const override;

private:
    CCCellValue m_Value;
    ushort m_nOpen = 0;
};

class CVCELLS_API CCConstArrayFormula : public cells::internal::ConstantFormula {
public:
    CCConstArrayFormula() : ConstantFormula(kConstArrayFormula) {}
    // Takes the list over. Short rows are filled up with empty values.
    explicit CCConstArrayFormula(SCCellValueList * list);
    CCConstArrayFormula(CCConstArrayFormula const & other);

    std::vector<CCCellValue> const & GetValues() const { return m_Values; }
    int GetWidth() const { return m_nWidth; }
    int GetHeight() const { return m_nHeight; }

    int GetType() const override { return kConstArrayFormula; }
    CCFormula * Copy() const override { return new CCConstArrayFormula(*this); }
    int Check(cells::CTX *, CCRef const *) const override {
        return m_Values.empty() ? int(errValue) : 0;
    }
    void Eval(cells::CTX * ctx, CCCellValue & value, CCRef const * current) const override;
    void Print(cells::CTX * ctx, std::wostream & stream, uchar priority) const override;
    int IsSingleValue(cells::CTX *, CCRef const *) override {
        return m_nWidth == 1 && m_nHeight == 1;
    }
    ushort OpenRef(cells::CTX * ctx, CCRef const * current) override;
    int NextValue(cells::CTX * ctx, ushort handle, CCCellValue & value,
                  CCRef const * current) override;
    int RefSize(cells::CTX * ctx, ushort handle, CSize & size, CCRef const * current) override;
    int CloseRef(cells::CTX * ctx, ushort handle, CCRef const * current) override;
    void Read(cells::CTX * ctx, CArchive & ar) override;
    void Write(cells::CTX * ctx, CArchive & ar) const override;

private:
    static constexpr int kClosed = -1;

    std::vector<CCCellValue> m_Values;
    int m_nWidth = 0, m_nHeight = 0;
    int m_nCursor = kClosed;
};
