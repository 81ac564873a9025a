#pragma once

#include <kesu/Export.h>
#include <kesu/events/KesuGeoPoint.h>
#include <kesu/foundation/Value.h>

#include <cstdint>

namespace kesu {

/// Requests to a weather service, and its answers. A point that is missing (nullptr) counts as an object that is
/// missing: "lat" and "long" are left out, a host attribute of either name too.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuWeatherAndForecast {
 public:
  KesuWeatherAndForecast() = delete;

  /// [KesuWeatherAndForecast postWeatherRequestedForType:forDays:withAttributes:] Event "WeatherReqType".
  /// Keys: "wtype", "nDays" (integer).
  static void postWeatherRequestedForType(std::int64_t type, std::int64_t days, const Attributes& attributes = {});

  /// [KesuWeatherAndForecast postWeatherHistoricalRequest:withEndDate:withAttributes:]
  /// Event "WeatherHistoricReqType". Keys: "startInterval", "endInterval" (seconds).
  static void postWeatherHistoricalRequest(double startDate, double endDate, const Attributes& attributes = {});

  /// [KesuWeatherAndForecast postWeatherStationsRequestWithClusterData:atGeoPoint:withAttributes:]
  /// Event "WeatherStationReqType". Keys: "clusterData" (as is); "lat", "long" (degrees).
  static void postWeatherStationsRequestWithClusterData(const Object& clusterData, const KesuGeoPoint* geoPoint,
                                                        const Attributes& attributes = {});

  /// [KesuWeatherAndForecast postWeatherMapLayersRequested:withAttributes:] Event "WeatherMapLayer".
  /// Keys: "layerName" (as is).
  static void postWeatherMapLayersRequested(const Object& layerName, const Attributes& attributes = {});

  /// [KesuWeatherAndForecast postWeatherRequestForUVIndexAtPoint:withAttributes:] Event "WeatherUVIndex".
  /// Keys: "lat", "long" (degrees).
  static void postWeatherRequestForUVIndexAtPoint(const KesuGeoPoint* point, const Attributes& attributes = {});

  /// [KesuWeatherAndForecast postWeatherResponseForType:withAttributes:] Event "WeatherResponseForType".
  /// Keys: "wtype" (integer).
  static void postWeatherResponseForType(std::int64_t type, const Attributes& attributes = {});

  /// [KesuWeatherAndForecast postWeatherResponseForHistoricalData:]
  /// Event "WeatherResponseForHistorical", no keys of its own.
  static void postWeatherResponseForHistoricalData(const Attributes& attributes = {});

  /// [KesuWeatherAndForecast postWeatherStationResponseData:] Event "WeatherStationResponse", no keys of its own.
  static void postWeatherStationResponseData(const Attributes& attributes = {});

  /// [KesuWeatherAndForecast postWeatherMapLayersResponse:] Event "WeatherMapLayersResponse", no keys of its own.
  static void postWeatherMapLayersResponse(const Attributes& attributes = {});

  /// [KesuWeatherAndForecast postWeatherResponseForUVIndex:] Event "WeatherResponseForUVIndex", no keys of its own.
  static void postWeatherResponseForUVIndex(const Attributes& attributes = {});

  /// [KesuWeatherAndForecast postForecastRequestForKeywords:withAttributes:] Event "ForecastRequest".
  /// Keys: "keywords" (as is).
  static void postForecastRequestForKeywords(const Object& keywords, const Attributes& attributes = {});

  /// [KesuWeatherAndForecast postForecastResponseForKeywords:] Event "ForecastResponse", no keys of its own.
  static void postForecastResponseForKeywords(const Attributes& attributes = {});

  /// [KesuWeatherAndForecast postForecastFetch:withAttributes:] Event "ForecastFetch".
  /// Keys: "nDays" (integer).
  static void postForecastFetch(std::int64_t nDays, const Attributes& attributes = {});

  /// [KesuWeatherAndForecast postForecastFetchResponse:] Event "ForecastFetchResponse", no keys of its own.
  static void postForecastFetchResponse(const Attributes& attributes = {});
};

}  // namespace kesu
