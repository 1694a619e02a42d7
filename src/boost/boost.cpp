#include <boost/json/src.hpp>
#include <boost/url/src.hpp>
