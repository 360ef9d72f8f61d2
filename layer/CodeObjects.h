#pragma once

#include <link.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "contract/CodeStacks.h"

namespace vexa::layer {

/// Returns the path of \p object, which does not depend on the current folder.
std::string pathOf(const link_map& object);

/// Notes that the loader has mapped \p object, whose calls of the host are an add-on's.
/// Threads: safe from any, as is forgetAddOnObject().
void noteAddOnObject(const link_map* object);
/// Notes that the loader is about to unmap \p object.
void forgetAddOnObject(const link_map* object);

/// The objects of the program, which are in another namespace of the loader than this one.
/// Threads: one thread at a time may use the object.
class CodeObjects final : public standin::CodeObjectsInterface {
public:
    std::shared_ptr<const standin::CodeObject> objectAt(std::uintptr_t address) override;
    void forget() override { m_known.clear(); }

private:
    std::map<const link_map*, std::shared_ptr<const standin::CodeObject>> m_known;
};

}  // namespace vexa::layer
