#include "bench/boundscases.h"

std::vector<BoundsCase> boundsCases()
{
    std::vector<BoundsCase> cases;
    for (const auto& group : {mediaBoundsCases(), configBoundsCases(), linkBoundsCases()})
        cases.insert(cases.end(), group.begin(), group.end());
    return cases;
}
