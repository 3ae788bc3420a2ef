#include <boost/asio/error.hpp>
#include <gmock/gmock.h>
#include <string>

#include "http/ResolveFault.h"

namespace {

using http::ClientFault;
using http::describeResolveFault;
namespace error = boost::asio::error;

TEST(ResolveFault, TellsANameThatIsNotThereForNowFromOneThatIsNot) {
  EXPECT_EQ(describeResolveFault("lab", error::host_not_found_try_again).kind(),
            ClientFault::Kind::Connection);
  for (const auto fault : {error::host_not_found, error::no_data, error::no_recovery}) {
    EXPECT_EQ(describeResolveFault("lab", fault).kind(), ClientFault::Kind::Usage) << fault;
  }
  EXPECT_EQ(describeResolveFault("lab", error::service_not_found).kind(), ClientFault::Kind::Usage);
}

TEST(ResolveFault, NamesTheNameTheReasonAndWhatToDo) {
  const boost::system::error_code fault = error::host_not_found;
  EXPECT_EQ(std::string(describeResolveFault("lab", fault).what()),
            "The name 'lab' cannot be resolved: " + fault.message() +
                ". Check its spelling, or use an address.");
  EXPECT_FALSE(describeResolveFault("lab", fault).mayBeDone());
}

}  // namespace
