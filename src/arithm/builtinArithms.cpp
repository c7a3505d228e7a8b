#include "arithm/arithm.h"
#include "arithm/arithmFactory.h"
#include "drawing/drawing.h"
#include "loading/loading.h"
#include "memoryDisk/memoryDisk.h"
#include "saving/saving.h"

namespace {

/// The handle of a built-in: a class whose static functions have the shapes of a library's entry points.
template <typename Algorithm>
Arithm* makeBuiltin()
{
    return new Arithm(false, &Algorithm::getID, &Algorithm::showConfigWindow, &Algorithm::execute);
}

}  // namespace

void ArithmFactory::registerBuiltins()
{
    // Menus list them in this order: MemoryDisk, Drawing, Saving, Loading.
    registerArithm(MemoryDisk::getClass(), MemoryDisk::getName(), makeBuiltin<MemoryDisk>());
    registerArithm(Drawing::getClass(), Drawing::getName(), makeBuiltin<Drawing>());
    registerArithm(Saving::getClass(), Saving::getName(), makeBuiltin<Saving>());
    registerArithm(Loading::getClass(), Loading::getName(), makeBuiltin<Loading>());
}
