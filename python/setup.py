"""Makes a wheel of a staged folder (build/release/python): ./dev wheel."""

from setuptools import Distribution, setup
from wheel.bdist_wheel import bdist_wheel


class BinaryDistribution(Distribution):
    def has_ext_modules(self):
        return True  # It holds libraries for one kind of machine,


class AnyPythonWheel(bdist_wheel):
    def get_tag(self):
        return "cp39", "abi3", super().get_tag()[2]  # but for every Python from 3.9 on.


setup(distclass=BinaryDistribution, cmdclass={"bdist_wheel": AnyPythonWheel})
