# Written from Homebrew's manual and never run: only its syntax and style could be checked.
class Conntester < Formula
  desc "One-shot tester of a network connection"
  # There is no page yet.
  homepage "https://conntester.invalid"
  # There is no release to fetch yet: the source is the checkout that holds this file.
  head "file://#{File.expand_path("../..", __dir__)}", using: :git, branch: "main"

  depends_on "cmake" => :build
  depends_on "iperf3"

  def install
    system "cmake", "-S", ".", "-B", "build", *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build", "--component", "program"
  end

  def caveats
    <<~EOS
      The tester looks for iperf3 and for its settings outside of Homebrew:
        /usr/local/bin/Qelmora/iperf3
        /usr/local/bin/Qelmora/connTester.conf
      To make both:
        sudo #{opt_libexec}/connTester/fixed-paths make
      To remove what that made, before the formula is uninstalled:
        sudo #{opt_libexec}/connTester/fixed-paths remove
    EOS
  end

  test do
    assert_match "usage: connTester", shell_output("#{bin}/connTester --help")
  end
end
