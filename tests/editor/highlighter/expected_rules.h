// The highlighter's rules as they must be, with every pattern written out: what the tests compare with.
#pragma once

#include "app/language/language.h"
#include "editor/themes/editor_theme.h"
#include "platform/text/regular_expression.h"

#include <QString>

#include <vector>

namespace kelm::test {

struct ExpectedRule
{
    QString pattern;
    CodableColor EditorTheme::*color;
    RegularExpression::Option options;
};

struct ExpectedFamily
{
    const char* name;
    std::vector<ExpectedRule> rules;
};

/// All families, in no particular order.
const std::vector<ExpectedFamily>& expectedFamilies();

/// The family of that name, which there must be.
const ExpectedFamily& expectedFamily(QLatin1String name);

} // namespace kelm::test
