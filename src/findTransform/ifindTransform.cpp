#include "findTransform/ifindTransform.h"

#include "findTransform/2D/c2DCalculateTransform.h"

ifindTransform* ifindTransform::Create() {
    return new c2DCalculateTransform;
}

int ifindTransform::Destroy(ifindTransform* finder) {
    delete finder;
    return 1;
}

void ifindTransform::Discard(ifindTransform* finder) {
    if (auto* const concrete = static_cast<c2DCalculateTransform*>(finder)) {
        concrete->muteDestructor();
        delete concrete;
    }
}
