#pragma once

#include "fuzzInput.h"
#include "paramStore/arithmParamMgr.h"

/// Fills a store with one record of every kind, as a hostile step would leave them.
namespace StoreMaker {

enum RecordId
{
    Colour = 1,
    Gray8 = 2,
    Gray16 = 3,
    Points = 4,
    Lines = 5,
    Polys = 6,
    Areas = 7,
    Strings = 8
};

/// A new store; the caller hands it to ArithmParamMgr::deleteInstance.
ArithmParamMgr* make(FuzzInput& input);

}  // namespace StoreMaker
