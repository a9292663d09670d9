#include "platform/cooker/cooker.h"

#include "platform/cooker/descriptionwriter.h"
#include "platform/cooker/flattener.h"
#include "platform/cooker/packageloader.h"
#include "platform/program/assembly.h"
#include "platform/program/programchecker.h"

#include <set>

namespace vellor::cooker {

namespace {

class Cooking
{
public:
    Cooking(const NodeTable& table, const CookOptions& options,
            const std::function<void(CookStage)>& progress)
        : m_table(table), m_options(options), m_progress(progress), m_diagnostics(m_sources),
          m_loader(m_sources, m_diagnostics, options)
    {
    }

    CookResult run(std::vector<PackageFile> files)
    {
        tell(CookStage::Loading);
        std::vector<const PackageSource*> packages;
        for (PackageFile& file : files)
            packages.push_back(m_loader.load(file.path, std::move(file.bytes)));
        // Graphs are looked at even when their file has errors, so that one run tells all.
        const bool badFile = m_diagnostics.any();
        tell(CookStage::Flattening);
        std::vector<FlatPackage> flat;
        for (const PackageSource* package : packages) {
            if (package)
                flat.push_back(flatten(m_sources, *package, m_table, m_options, m_diagnostics));
        }
        checkUids(flat);
        if (m_diagnostics.any())
            return {badFile ? CookEnd::BadFile : CookEnd::BadGraph, m_diagnostics.messages(), {}, {}};
        return write(flat);
    }

private:
    void tell(CookStage stage) const
    {
        if (m_progress)
            m_progress(stage);
    }

    void checkUids(const std::vector<FlatPackage>& packages)
    {
        std::set<std::string> urls;
        for (const FlatPackage& package : packages) {
            for (const FlatPackage::Graph& graph : package.graphs) {
                if (!urls.insert(graph.url).second)
                    m_diagnostics.error(graph.source->identifier.place, "the graph '" +
                                                                            graph.source->identifier.text +
                                                                            "' is in two packages");
            }
        }
    }

    CookResult write(const std::vector<FlatPackage>& packages)
    {
        tell(CookStage::FrontEnd);
        CookResult result;
        std::vector<program::Program> programs;
        for (const FlatPackage& package : packages) {
            std::string error;
            if (!program::checkProgram(package.program, error)) {
                result.errors.push_back("the cooked program is wrong: " + error);
                result.end = CookEnd::BadProgram;
            }
            programs.push_back(package.program);
        }
        tell(CookStage::BackEnd);
        if (result.end == CookEnd::Done) {
            result.description = writeDescription(packages);
            result.assembly = program::writeAssembly(programs);
        }
        return result;
    }

    const NodeTable& m_table;
    const CookOptions& m_options;
    const std::function<void(CookStage)>& m_progress;
    Sources m_sources;
    Diagnostics m_diagnostics;
    PackageLoader m_loader;
};

} // namespace

CookResult cook(std::vector<PackageFile> files, const NodeTable& table, const CookOptions& options,
                const std::function<void(CookStage)>& progress)
{
    return Cooking(table, options, progress).run(std::move(files));
}

} // namespace vellor::cooker
