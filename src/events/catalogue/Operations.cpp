// The operations of the catalogue: each line of Operations.inc becomes the definition of the function that its header
// declares. The compiler checks one against the other, catalogue_test the comments in the header as well.
#include <kesu/events/Catalogue.h>

#include <cstdint>
#include <initializer_list>
#include <string>

#include "events/EventPoster.h"
#include "events/catalogue/EventBuilder.h"

namespace kesu {

using namespace catalogue;

namespace {

// What the name of a place means where its feed has no parameter of that name: a constant.
enum Place { a0, a1, a2, a3, a4, a5, a6, a7, a8 };

}  // namespace

// KESU_EACH(KESU_WRITE, x, y) is KESU_WRITE(x, a0) KESU_WRITE(y, a1).
#define KESU_EACH(macro, ...) __VA_OPT__(KESU_EACH_0(macro, __VA_ARGS__))
#define KESU_EACH_0(macro, feed, ...) macro(feed, a0) __VA_OPT__(KESU_EACH_1(macro, __VA_ARGS__))
#define KESU_EACH_1(macro, feed, ...) macro(feed, a1) __VA_OPT__(KESU_EACH_2(macro, __VA_ARGS__))
#define KESU_EACH_2(macro, feed, ...) macro(feed, a2) __VA_OPT__(KESU_EACH_3(macro, __VA_ARGS__))
#define KESU_EACH_3(macro, feed, ...) macro(feed, a3) __VA_OPT__(KESU_EACH_4(macro, __VA_ARGS__))
#define KESU_EACH_4(macro, feed, ...) macro(feed, a4) __VA_OPT__(KESU_EACH_5(macro, __VA_ARGS__))
#define KESU_EACH_5(macro, feed, ...) macro(feed, a5) __VA_OPT__(KESU_EACH_6(macro, __VA_ARGS__))
#define KESU_EACH_6(macro, feed, ...) macro(feed, a6) __VA_OPT__(KESU_EACH_7(macro, __VA_ARGS__))
#define KESU_EACH_7(macro, feed, ...) macro(feed, a7) __VA_OPT__(KESU_EACH_8(macro, __VA_ARGS__))
#define KESU_EACH_8(macro, feed) macro(feed, a8)

// The parameter of a feed, by its word in the list; a constant has none.
#define KESU_PARAMETER(feed, name) KESU_TYPE_##feed(name)
#define KESU_TYPE_object(key) KESU_OBJECT
#define KESU_TYPE_asIs(key) KESU_OBJECT
#define KESU_TYPE_number(key) KESU_OBJECT
#define KESU_TYPE_ignored() KESU_OBJECT
#define KESU_TYPE_decimal(key) KESU_INTEGER
#define KESU_TYPE_integer(key) KESU_INTEGER
#define KESU_TYPE_seconds(key) KESU_SECONDS
#define KESU_TYPE_flag(key) KESU_FLAG
#define KESU_TYPE_whenTrue(key) KESU_FLAG
#define KESU_TYPE_point(latitude, longitude) KESU_POINT
#define KESU_TYPE_constant(key, text) KESU_NOTHING
#define KESU_OBJECT(name) const Object &name,
#define KESU_INTEGER(name) std::int64_t name,
#define KESU_SECONDS(name) double name,
#define KESU_FLAG(name) bool name,
#define KESU_POINT(name) const KesuGeoPoint *name,
#define KESU_NOTHING(name)

#define KESU_WRITE(feed, name) .write(feed, name)
#define KESU_OPERATION(Class, function, rest, destination, event, ...)                        \
  void Class::function(KESU_EACH(KESU_PARAMETER, __VA_ARGS__) const Attributes& attributes) { \
    EventBuilder(event, attributes) KESU_EACH(KESU_WRITE, __VA_ARGS__).postTo(destination);   \
  }
#define KESU_SCENE_OPERATION(Class, function, rest, ...)
#include "events/catalogue/Operations.inc"

// A braced list alone would be taken for the attributes and for an object alike.
void KesuCommerceRevenue::postRevenue(const Object& revenue, std::initializer_list<Attributes::Entry> attributes) {
  postRevenue(revenue, Attributes(attributes));
}

void KesuDrone::postStartedAerialVideo(const Object& status, std::initializer_list<Attributes::Entry> attributes) {
  postStartedAerialVideo(status, Attributes(attributes));
}

void KesuSceneFlow::postSecondsOnScene(const Object& sceneName, double seconds) {
  const std::string* name = sceneName ? sceneName->text() : nullptr;
  if (name != nullptr && !name->empty()) {
    EventPoster::shared().updateScreenFlowForScenes(*name, seconds);
  }
}

}  // namespace kesu
