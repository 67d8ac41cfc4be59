// What a run shows on the installation page and asks about it. The functions that show something do nothing while
// there is no such page. Worker; the speed timer on the UI thread.
#pragma once

#include <cstdint>
#include <string>

#include "manifest/manifest_model.h"

// The upper block of the page: the downloads.
void ShowPackageText(const std::wstring& text);
void ShowPackageDetail(const std::wstring& text);
void ShowPackageProgress(uint64_t done, uint64_t total);

// The lower block: the installation.
void ShowTotalText(const std::wstring& text);
void ShowTotalDetail(const std::wstring& text);
void ShowTotalProgress(uint64_t done, uint64_t total);

// The Cancel button becomes Exit.
void OfferExit();

// "<text>: <title> (<number> / <count>)", `index` counting from 0.
std::wstring PackageHeadline(unsigned textId, const Package& package, size_t index, size_t count);

// Tells that a package failed, with the error code unless it is 0, and whether the user wants to try it again.
bool AskToTryAgain(unsigned headlineId, const Package& package, uint32_t error);
