// SPDX-License-Identifier: MIT
// The address says what is shown: #orvgDFTFwd_CToC_64_32fc a kernel, nothing the list.
"use strict";

(() => {
  const at = (id) => document.getElementById(id);

  function route() {
    const name = decodeURIComponent(location.hash.slice(1));
    if (name === "main") return;  // the link that skips the head
    const turned = at("list").hidden !== (name !== "");
    at("list").hidden = name !== "";
    at("kernel").hidden = name === "";
    document.title = name === "" ? "orvgen kernels" : `${name}, orvgen kernels`;
    if (name !== "") explorer.kernelView.show(name);
    scrollTo(0, 0);
    // Who follows a link of the list by the keyboard goes on at the head of the kernel; who walks
    // through the choices stays there.
    if (turned && name !== "") at("kernel-title").focus();
  }

  at("skip").addEventListener("click", (event) => {
    event.preventDefault();
    at("main").focus();
  });
  explorer.listView.start();
  explorer.kernelView.start();
  addEventListener("hashchange", route);
  route();
})();
