#pragma once
namespace boost::uuids {
struct uuid {
    unsigned char data[16];
};
}  // namespace boost::uuids
