# SPDX-License-Identifier: MIT
#: ./dev figures                      renews tests/data/kernel_figures.csv and reach.csv, where kernels are meant to change
# shellcheck shell=bash
takes 0 "$@"
keep kernel_figures.csv write_figures
keep reach.csv write_reach
