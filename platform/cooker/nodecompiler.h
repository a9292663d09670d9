#pragma once

#include "platform/cooker/cookoptions.h"
#include "platform/cooker/scope.h"
#include "platform/program/recordpool.h"

#include <optional>

namespace vellor::cooker {

/// Makes nodes of a program out of nodes of authoring files. Errors go to diagnostics.
class NodeCompiler
{
public:
    NodeCompiler(const Sources& sources, Diagnostics& diagnostics, const NodeTable& table,
                 const CookOptions& options, program::Program& program);

    /// The node's index, or kNone when something is wrong. The scope's results hold what its links refer to.
    std::int32_t compile(const Scope& scope, const NodeSource& source);

    /// The picture that a link's "from" names, or kNone, which has been told.
    std::int32_t resolve(const Scope& scope, const SourceText& from);

    /// The picture with that many channels: itself, or a conversion of it.
    std::int32_t withChannels(std::int32_t node, int channels);

    /// A value program for text in scope; nullopt when something is wrong.
    std::optional<program::ValueProgram> value(const Scope& scope, const SourceText& text,
                                               program::ValueType type,
                                               const std::vector<SampledOperand>* operands = nullptr);

    /// Runs a piece of compilation; its errors go to diagnostics. False when there was one.
    template<typename Work> bool guarded(Place place, const Work& work)
    {
        try {
            work();
            return true;
        } catch (const ExpressionError& error) {
            m_diagnostics.error(error.place, error.what());
        } catch (const program::TooLong&) {
            m_diagnostics.error(place, "the expression is too long once everything is put in");
        }
        return false;
    }

    program::RecordPool& pool() { return m_pool; }

private:
    struct Job; // one node under way

    const nodes::NodeDeclaration* find(const std::string& name) const;
    const nodes::NodeDeclaration* find(std::uint32_t id) const;
    std::vector<std::string> kindNames() const;
    void connect(Job& job);
    void settleChannels(Job& job);
    void convertOperands(Job& job);
    void setParameters(Job& job);
    void setParameter(Job& job, const nodes::ParameterDeclaration& declaration,
                      const ParameterSource& source);
    void setNumber(Job& job, const nodes::ParameterDeclaration& declaration, const ParameterSource& source,
                   program::Parameter& parameter);
    void setChoice(Job& job, const nodes::ParameterDeclaration& declaration, const ParameterSource& source,
                   program::Parameter& parameter);
    void setResource(Job& job, const nodes::ParameterDeclaration& declaration, const ParameterSource& source,
                     program::Parameter& parameter);
    void setBlob(Job& job, const nodes::ParameterDeclaration& declaration, const ParameterSource& source,
                 program::Parameter& parameter);
    void setPicture(Job& job, const ParameterSource& source, program::Parameter& parameter);
    void setSizeAndSeed(Job& job);
    std::int32_t pictureInput(const Scope& scope, const SourceText& from, const std::string& name);
    void error(Job& job, Place place, const std::string& text);

    const Sources& m_sources;
    Diagnostics& m_diagnostics;
    const NodeTable& m_table;
    const CookOptions& m_options;
    program::Program& m_program;
    std::map<std::string, std::int32_t> m_pictures; // by path: the blob, or kNone after an error
    program::RecordPool m_pool;
};

} // namespace vellor::cooker
