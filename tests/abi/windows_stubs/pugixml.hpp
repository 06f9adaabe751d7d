#pragma once

namespace pugi {
class xml_node {
  private:
    void* m_root;
};
}  // namespace pugi
