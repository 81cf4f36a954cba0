// SPDX-License-Identifier: MIT
int parentOfAll() { return 0; }
