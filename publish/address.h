// Download addresses, as the player's program takes them apart.
#pragma once

#include <string>
#include <string_view>

// What the program makes of an address that it can't use, as a sentence; empty for a usable one.
std::string AddressFault(std::string_view url);

// What is unwise about a usable address; empty for nothing.
std::string AddressWeakness(std::string_view url);

// "https://host" in lower case; empty when there is none.
std::string SiteOf(std::string_view url);

// The host in lower case, without a port; empty when there is none.
std::string HostOf(std::string_view url);

// A file name as the last part of an address.
std::string UrlEscaped(std::string_view name);
