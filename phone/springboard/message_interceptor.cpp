#include "phone/springboard/message_lookup.hpp"

#include <atomic>

namespace phone {

namespace {

std::atomic<MessageInterceptor> g_interceptor { nullptr };

}

void setMessageInterceptor(MessageInterceptor interceptor) { g_interceptor = interceptor; }

MessageInterceptor messageInterceptor() { return g_interceptor.load(std::memory_order_relaxed); }

}
