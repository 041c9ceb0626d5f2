// Functions that no name leads to, called through their objects.
#pragma once

#include "formula/CCOpFormula.h"
#include "formula/Parser.h"
#include "functions/internal/Families.h"
#include "support/BaseHost.h"
#include "values/CCCellValue.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

// The number function `id` gives for arguments as typed, or an error's number below zero.
inline double EvalUnnamed(unsigned id, wchar_t const * args) {
    cells::test::BaseHost host;
    std::unique_ptr<CCFormula> const list(
        _ParseFormula(&host, (std::wstring(L"SUM(") + args + L")").c_str(), 0, nullptr));
    auto const & call = *static_cast<CCOpFormula *>(list.get());
    CCFunc const & func = *cells::internal::FindFunctionObject(id);
    EXPECT_TRUE(func.check(&host, call.GetArgs(), nullptr));
    CCCellValue value;
    func.eval(&host, value, call.GetArgs(), nullptr);
    return value.IsError() ? -double(value.GetError()) : value.GetNumber();
}
