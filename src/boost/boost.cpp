// Boost.URL includes <iostream> and uses nothing of it. Without it the program neither sets up the
// standard streams nor touches the locales behind them: a quarter of a megabyte.
#include <istream>
#include <ostream>
#ifdef __GLIBCXX__
#define _GLIBCXX_IOSTREAM 1
#endif

#include <boost/json/src.hpp>
#include <boost/version.hpp>
#if BOOST_VERSION < 108200
#include <boost/url/src.hpp>
#endif
