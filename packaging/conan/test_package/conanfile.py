"""Builds hosts over the package and runs one, on the simulated radio."""

from pathlib import Path

from conan import ConanFile
from conan.tools.build import can_run
from conan.tools.cmake import CMake, cmake_layout


class Host(ConanFile):
    settings = "os", "arch", "compiler", "build_type"
    generators = "CMakeToolchain", "VirtualRunEnv"
    test_type = "explicit"

    def requirements(self):
        self.requires(self.tested_reference_str)

    def layout(self):
        cmake_layout(self)

    def build(self):
        cmake = CMake(self)
        cmake.configure(build_script_folder="../../../tests/install")
        cmake.build()

    def test(self):
        if can_run(self) and self.settings.os == "Linux":
            self.run(Path(self.cpp.build.bindir) / "on_lanvoss", env="conanrun")
