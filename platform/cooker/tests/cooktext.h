#pragma once

#include "platform/cooker/cooker.h"
#include "platform/cooker/tests/faketable.h"
#include "platform/program/assembly.h"

#include <gtest/gtest.h>

namespace vellor::cooker {

inline CookResult cookText(const std::string& text, const CookOptions& options = {})
{
    return cook({{"test.vlr", text}}, fakeTable(), options);
}

/// A package of one graph with these elements in it, on line 1.
inline std::string package(const std::string& content)
{
    return "<package formatversion=\"1\"><graph identifier=\"g\">" + content + "</graph></package>";
}

/// The program of a package that has to cook; empty after a failure.
inline program::Program cookedProgram(const std::string& text, const CookOptions& options = {})
{
    const CookResult result = cookText(text, options);
    std::string all;
    for (const std::string& error : result.errors)
        all += error + "\n";
    EXPECT_EQ(all, "");
    std::string error;
    const auto programs = program::readAssembly(result.assembly, error);
    EXPECT_TRUE(programs) << error;
    return programs && programs->size() == 1 ? programs->front() : program::Program();
}

} // namespace vellor::cooker
