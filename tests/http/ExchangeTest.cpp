#include <gmock/gmock.h>

#include "http/Exchange.h"

namespace {

using http::Exchange;
using http::ExchangePool;

TEST(ExchangePool, LendsWhatWasUsedLast) {
  ExchangePool pool;
  std::unique_ptr<Exchange> first = pool.take();
  std::unique_ptr<Exchange> second = pool.take();
  const Exchange* const usedLast = second.get();
  pool.give(std::move(first));
  pool.give(std::move(second));

  EXPECT_EQ(pool.take().get(), usedLast);
}

TEST(ExchangePool, KeepsTheMemoryOfOrdinaryAnswers) {
  ExchangePool pool;
  std::unique_ptr<Exchange> exchange = pool.take();
  exchange->response.body.assign(300000, 'x');
  exchange->response.body = "small";
  pool.give(std::move(exchange));

  EXPECT_GE(pool.take()->response.body.capacity(), 300000U);
}

TEST(ExchangePool, KeepsALargeBufferThatIsUsed) {
  ExchangePool pool;
  std::unique_ptr<Exchange> exchange = pool.take();
  exchange->response.body.assign(8000000, 'x');
  pool.give(std::move(exchange));

  EXPECT_GE(pool.take()->response.body.capacity(), 8000000U);
}

TEST(ExchangePool, GivesUpALargeBufferBehindSmallAnswers) {
  ExchangePool pool;
  std::unique_ptr<Exchange> exchange = pool.take();
  exchange->response.body.assign(8000000, 'x');
  exchange->response.body = "small";
  exchange->request.body().assign(8000000, 'x');
  exchange->request.body() = "small";
  pool.give(std::move(exchange));
  exchange = pool.take();

  EXPECT_LT(exchange->response.body.capacity(), 1000U);
  EXPECT_LT(exchange->request.body().capacity(), 1000U);
}

TEST(ExchangePool, ForgetsWhatTheHandlerNoted) {
  ExchangePool pool;
  std::unique_ptr<Exchange> exchange = pool.take();
  exchange->memo = 1;
  pool.give(std::move(exchange));

  EXPECT_FALSE(pool.take()->memo.has_value());
}

TEST(ExchangePool, FreesWhatNobodyTookSinceTheLastTrim) {
  ExchangePool pool;
  std::unique_ptr<Exchange> first = pool.take();
  std::unique_ptr<Exchange> second = pool.take();
  pool.give(std::move(first));
  pool.give(std::move(second));
  pool.trim();
  pool.give(pool.take());

  pool.trim();
  EXPECT_EQ(pool.countFree(), 1U);
  pool.trim();
  EXPECT_EQ(pool.countFree(), 0U);
}

TEST(ExchangePool, KeepsABoundedNumber) {
  ExchangePool pool;
  std::vector<std::unique_ptr<Exchange>> taken;
  for (int i = 0; i < 100; ++i) {
    taken.push_back(pool.take());
  }
  for (std::unique_ptr<Exchange>& exchange : taken) {
    pool.give(std::move(exchange));
  }

  EXPECT_EQ(pool.countFree(), 32U);
}

}  // namespace
