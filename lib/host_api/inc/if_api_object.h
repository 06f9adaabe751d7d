#pragma once

namespace rym {

/// Root of all host API objects; has no operations of its own.
class IfApiObject {
  protected:
    ~IfApiObject() = default;
};

}  // namespace rym
