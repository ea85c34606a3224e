// What of Asio need not be compiled with each file that uses it.
#include <boost/asio/impl/src.hpp>
