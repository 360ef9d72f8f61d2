#include "stacks/OwnCode.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace vexa::runner {
namespace {

constexpr std::string_view kLibrary = "libvexautilutil_utils.so";
constexpr std::string_view kClassLibraries = "libvexahostlibs.so";
constexpr std::array<std::string_view, 12> kSharedLibraries = {
    kLibrary,       kClassLibraries, "libvexastandin.so", "libvexalayer.so", "libstdc++.so",  "libc++.so",
    "libc++abi.so", "libgcc_s.so",   "libc.so",           "libm.so",         "libpthread.so", "libdl.so"};

// Parts of the paths of headers whose inline functions are compiled into add-ons.
constexpr std::array<std::string_view, 5> kForeignSources = {"/usr/include/", "/usr/lib/", "/include/vexautilutil/",
                                                             "/include/vexa/", "/include/c++/"};

bool isNamedAs(std::string_view object, std::string_view library) {
    return object.substr(object.rfind('/') + 1).substr(0, library.size()) == library;
}

}  // namespace

bool isSharedLibrary(const std::string& object) {
    return std::any_of(kSharedLibraries.begin(), kSharedLibraries.end(),
                       [&](std::string_view library) { return isNamedAs(object, library); });
}

bool isBetweenAddOnAndHost(const std::string& object) {
    return isNamedAs(object, kLibrary) || isNamedAs(object, kClassLibraries);
}

bool isForeignSource(const Frame& frame) {
    return frame.line != 0 && std::any_of(kForeignSources.begin(), kForeignSources.end(), [&](std::string_view part) {
               return frame.file.find(part) != std::string::npos;
           });
}

}  // namespace vexa::runner
