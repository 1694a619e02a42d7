// The parts of Boost that are not header-only, without the distribution's libraries.
#include <boost/json/src.hpp>
#include <boost/version.hpp>
#if BOOST_VERSION < 108200
#include <boost/url/src.hpp>
#endif
