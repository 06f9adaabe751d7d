#pragma once
#include <boost/variant/variant_fwd.hpp>
