#pragma once

#include "platform/engines/cpu/imagestore.h"
#include "platform/engines/cpu/inputs.h"
#include "platform/engines/cpu/package.h"
#include "platform/engines/cpu/plan.h"
#include "platform/engines/cpu/values.h"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <vector>

namespace vellor::cpu {

/// Gives the picture of an image input that is about to be read at the given size, or null.
using PictureSource =
    std::function<std::shared_ptr<const HostImage>(std::uint32_t input, int width, int height)>;

/// What a plan is made from.
struct PlanRequest
{
    std::vector<int> outputs;       // image outputs of the package, in the order they are wanted
    std::vector<bool> changing;     // by input: hinted, or changed since the last generation
    std::vector<int> hintedOutputs; // hints count for what these need; empty: for everything
};

/// Settles sizes, parameters and keys of all nodes that the wanted outputs need, and finds out which of them
/// are to be computed. The thread that called into the engine only.
class Planner
{
public:
    Planner(const Package& package, const Inputs& inputs, Values& values, const ImageStore& store)
        : package_(package), inputs_(inputs), values_(values), store_(store)
    {
    }

    Plan make(const PlanRequest& request, const PictureSource& pictures);
    /// Width and height that the readers of an image input have with the present inputs; 0 when there are
    /// none.
    std::array<int, 2> pictureSize(std::uint32_t input);

private:
    struct Size
    {
        int width = 0, height = 0;
    };

    std::vector<bool> neededBy(const std::vector<int>& outputs) const;
    void settleSizes(const std::vector<bool>& needed);
    Size sizeOf(int node) const;
    void askForPictures(const std::vector<bool>& needed, const PictureSource& pictures);
    int unpacked(std::uint32_t input);
    int imageInputOf(int node) const;
    void addNode(int node);
    void addParameters(int node, PlanNode& planned);
    bool showPicture(PlanNode& planned, std::uint32_t input) const;
    std::vector<int> readersOf() const;
    int rootOf(int output, int readers);
    void setParameter(const program::Parameter& parameter, nodes::ParameterType type,
                      nodes::ParameterValue& value);
    int resampled(int planNode, int width, int height);
    Key keyOf(int node, const PlanNode& planned) const;
    void markKept(const PlanRequest& request);
    bool touches(int node, const std::vector<bool>& changing) const;
    void markCompute();

    const Package& package_;
    const Inputs& inputs_;
    Values& values_;
    const ImageStore& store_;

    Plan plan_;
    std::vector<Size> sizes_;  // by node of the package
    std::vector<int> planned_; // by node of the package: node of the plan
    std::map<std::uint32_t, std::shared_ptr<const HostImage>> pictures_; // by input; null: none
    std::map<std::uint32_t, int> unpacked_;                              // by input: node of the plan
    std::map<std::array<int, 3>, int> resampled_;                        // by node of the plan and size
};

} // namespace vellor::cpu
