// A plug-in of clang-tidy: lets the checks look at the declarations of this project alone. Those of
// the system's headers are nine tenths of what a source consists of, and what is found in them is
// never shown.
//
// A declaration belongs to the system when the place where it is expanded stands in a header that
// the compiler was given as one of the system's (-isystem). Checks that follow a name into such a
// header still can.

#include <clang/AST/ASTConsumer.h>
#include <clang/AST/ASTContext.h>
#include <clang/Basic/SourceManager.h>
#include <clang/Frontend/FrontendPluginRegistry.h>
#include <memory>
#include <string>
#include <vector>

namespace {

class OwnDeclarations final : public clang::ASTConsumer {
 public:
  void HandleTranslationUnit(clang::ASTContext& context) override {
    const clang::SourceManager& sources = context.getSourceManager();
    std::vector<clang::Decl*> own;
    for (clang::Decl* declaration : context.getTranslationUnitDecl()->decls()) {
      if (!sources.isInSystemHeader(sources.getExpansionLoc(declaration->getLocation()))) {
        own.push_back(declaration);
      }
    }
    context.setTraversalScope(own);
  }
};

class Plugin final : public clang::PluginASTAction {
 protected:
  std::unique_ptr<clang::ASTConsumer> CreateASTConsumer(clang::CompilerInstance&,
                                                        llvm::StringRef) override {
    return std::make_unique<OwnDeclarations>();
  }

  bool ParseArgs(const clang::CompilerInstance&, const std::vector<std::string>&) override {
    return true;
  }

  ActionType getActionType() override { return AddBeforeMainAction; }
};

const clang::FrontendPluginRegistry::Add<Plugin> kPlugin("own-declarations",
                                                         "leaves the system's declarations out");

}  // namespace
