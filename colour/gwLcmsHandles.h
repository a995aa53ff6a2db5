#pragma once

#include <lcms2.h>

#include <memory>
#include <type_traits>

// Owners of Little CMS objects. Only the engine layer and tests that check
// its output against the library use them; the profile classes never do.

struct SgwLcmsContextCloser {
    void operator()(cmsContext context) const { cmsDeleteContext(context); }
};
struct SgwLcmsProfileCloser {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
struct SgwLcmsTransformCloser {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};

using CgwLcmsContext = std::unique_ptr<std::remove_pointer_t<cmsContext>, SgwLcmsContextCloser>;
using CgwLcmsProfile = std::unique_ptr<void, SgwLcmsProfileCloser>;
using CgwLcmsTransform = std::unique_ptr<void, SgwLcmsTransformCloser>;
