// SPDX-License-Identifier: MIT
// The page that lists how every length of every family is computed.
#pragma once

#include <string>
#include <vector>

#include "frame/kernel_family.h"

namespace orvgen::generator {

// In Markdown. Families that are computed alike share a table; one that differs at few lengths has
// these only.
std::string plansPage(const std::vector<KernelFamily>& families);

}  // namespace orvgen::generator
