"""Packs the libraries of the checkout that this recipe stands in."""

import re
from pathlib import Path

from conan import ConanFile
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy


class Lanvoss(ConanFile):
    name = "lanvoss"
    description = "Reaches a named device over Wi-Fi Direct"
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False]}
    default_options = {"shared": True}

    def set_version(self):
        header = self._checkout() / "include/lanvoss/lanvoss.h"
        self.version = re.search(r'LANVOSS_VERSION "(.*)"', header.read_text()).group(1)

    def export_sources(self):
        for pattern in (
            "CHANGELOG.md",
            "CMakeLists.txt",
            "README.md",
            "cmake/*",
            "docs/*",
            "examples/*",
            "include/*",
            "packaging/*",
            "src/*",
        ):
            copy(self, pattern, self._checkout(), self.export_sources_folder)

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        for part in "BUILD_TESTING", "LANVOSS_BUILD_PROGRAM", "LANVOSS_BUILD_EXAMPLES":
            toolchain.cache_variables[part] = False
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()

    def package_info(self):
        # Hosts find the library by its own CMake package.
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.builddirs = ["lib/cmake/lanvoss"]

    def _checkout(self):
        return Path(self.recipe_folder).parents[1]
