// SPDX-License-Identifier: MIT
// What the precompiled header of the tests is compiled for.
