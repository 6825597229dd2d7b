// Under which names our programs are known on the session bus. People's scripts use the same ones.
#pragma once

#include <QLatin1String>

namespace sonorel {

// The client: the object at its door, and the interface beside org.freedesktop.Application.
inline constexpr QLatin1String kClientService("com.orv.Sonorel");
inline constexpr QLatin1String kClientPath("/com/orv/Sonorel");
inline constexpr QLatin1String kClientInterface("com.orv.Sonorel.Client");

// The drop agent: its window, and the signals that are its notifications.
inline constexpr QLatin1String kAgentService("com.orv.TrackChute");
inline constexpr QLatin1String kAgentPath("/com/orv/TrackChute");
inline constexpr QLatin1String kAgentInterface("com.orv.TrackChute");

} // namespace sonorel
