#include "platform/nodes/node.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace vellor::nodes {

namespace {

bool isIdentifier(std::string_view name)
{
    return !name.empty() &&
           name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789") == std::string_view::npos;
}

bool isSentence(std::string_view text)
{
    return text.size() > 5 && text.back() == '.';
}

} // namespace

TEST(Declaration, NamesAndIdsAreUniqueAndFound)
{
    std::set<std::string> names;
    std::set<std::uint32_t> ids;
    for (const NodeDeclaration* node : allNodes()) {
        EXPECT_TRUE(isIdentifier(node->name)) << node->name;
        EXPECT_TRUE(names.insert(node->name).second) << node->name;
        EXPECT_TRUE(ids.insert(node->id()).second) << node->name;
        EXPECT_EQ(findNode(std::string_view(node->name)), node);
        EXPECT_EQ(findNode(node->id()), node);
    }
    EXPECT_EQ(findNode("no such kind"), nullptr);
}

TEST(Declaration, KindsAreDescribed)
{
    const std::set<std::string> categories = {"Sources",       "Patterns", "Tone",    "Combining",
                                              "Neighbourhood", "Geometry", "Surface", "Programs"};
    for (const NodeDeclaration* node : allNodes()) {
        EXPECT_TRUE(isSentence(node->text)) << node->name;
        EXPECT_FALSE(std::string(node->label).empty()) << node->name;
        EXPECT_EQ(categories.count(node->category), 1u) << node->name;
        EXPECT_NE(bool(node->row), node->area != nullptr) << node->name << " has one kernel";
        EXPECT_TRUE(node->scratch == nullptr || node->area != nullptr) << node->name;
        std::set<std::string> operands;
        for (const OperandDeclaration& operand : node->operands) {
            EXPECT_TRUE(isIdentifier(operand.name) && operands.insert(operand.name).second) << node->name;
            EXPECT_TRUE(isSentence(operand.text)) << node->name << '.' << operand.name;
        }
    }
}

TEST(Declaration, ParametersAreSane)
{
    for (const NodeDeclaration* node : allNodes()) {
        std::set<std::string> names;
        for (const ParameterDeclaration& p : node->parameters) {
            const std::string where = std::string(node->name) + '.' + p.name;
            EXPECT_TRUE(isIdentifier(p.name) && names.insert(p.name).second) << where;
            EXPECT_TRUE(isSentence(p.text)) << where;
            EXPECT_LT(p.minimum, p.maximum) << where;
            EXPECT_EQ(p.type == ParameterType::Choice, !p.choices.empty()) << where;
            if (p.type == ParameterType::Choice) {
                EXPECT_EQ(p.maximum, double(p.choices.size()) - 1.0) << where;
                EXPECT_EQ(std::set<std::string>(p.choices.begin(), p.choices.end()).size(), p.choices.size())
                    << where;
            }
            // A 0 may stand for "as the first component", below the range.
            EXPECT_TRUE(p.defaultValue[0] >= p.minimum && p.defaultValue[0] <= p.maximum) << where;
        }
    }
}

} // namespace vellor::nodes
