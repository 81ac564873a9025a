#include <kesu/events/KesuCommerceBilling.h>
#include <kesu/events/KesuCommerceCheckout.h>
#include <kesu/events/KesuCommercePayment.h>
#include <kesu/events/KesuCommerceShipping.h>

#include "events/catalogue/EventBuilder.h"

namespace kesu {

void KesuCommerceCheckout::postCheckoutStarted(const Attributes& attributes) {
  EventBuilder("CheckoutStarted", attributes).post();
}

void KesuCommerceCheckout::postCheckoutCompleted(const Attributes& attributes) {
  EventBuilder("CheckoutCompleted", attributes).post();
}

void KesuCommerceCheckout::postCheckoutAbandoned(const Attributes& attributes) {
  EventBuilder("CheckoutAbandoned", attributes).post();
}

void KesuCommerceCheckout::postCheckoutFailed(const Attributes& attributes) {
  EventBuilder("CheckoutFailed", attributes).post();
}

void KesuCommerceShipping::postShippingStarted(const Attributes& attributes) {
  EventBuilder("ShippingStarted", attributes).post();
}

void KesuCommerceShipping::postShippingCompleted(const Attributes& attributes) {
  EventBuilder("ShippingCompleted", attributes).post();
}

void KesuCommerceShipping::postShippingAbandoned(const Attributes& attributes) {
  EventBuilder("ShippingAbandoned", attributes).post();
}

void KesuCommerceShipping::postShippingFailed(const Attributes& attributes) {
  EventBuilder("ShippingFailed", attributes).post();
}

void KesuCommerceBilling::postBillingStarted(const Attributes& attributes) {
  EventBuilder("BillingStarted", attributes).post();
}

void KesuCommerceBilling::postBillingCompleted(const Attributes& attributes) {
  EventBuilder("BillingCompleted", attributes).post();
}

void KesuCommerceBilling::postBillingAbandoned(const Attributes& attributes) {
  EventBuilder("BillingAbandoned", attributes).post();
}

void KesuCommerceBilling::postBillingFailed(const Attributes& attributes) {
  EventBuilder("BillingFailed", attributes).post();
}

void KesuCommercePayment::postPaymentStarted(const Attributes& attributes) {
  EventBuilder("PaymentStarted", attributes).post();
}

void KesuCommercePayment::postPaymentCompleted(const Attributes& attributes) {
  EventBuilder("PaymentCompleted", attributes).post();
}

void KesuCommercePayment::postPaymentAbandoned(const Attributes& attributes) {
  EventBuilder("PaymentAbandoned", attributes).post();
}

void KesuCommercePayment::postPaymentFailed(const Attributes& attributes) {
  EventBuilder("PaymentFailed", attributes).post();
}

}  // namespace kesu
