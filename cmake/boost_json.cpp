// The source of Boost.JSON, all of it, as its headers offer it.
#include <boost/json/src.hpp>
