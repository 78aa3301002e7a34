# The repairs of GNUstep's own classes, one file each.
set(gnustep_sources
  gnustep/ArrayController.mm
  gnustep/BindingNull.mm
  gnustep/BundleNib.mm
  gnustep/DateFormatter.mm
  gnustep/DependentKeys.mm
  gnustep/KeyButtons.mm
  gnustep/LinkedFile.mm
  gnustep/MenuTitle.mm
  gnustep/ObservedSetter.mm
  gnustep/PropertyLists.mm
  gnustep/RefusedEdit.mm
  gnustep/TabView.mm
  gnustep/TableView.mm
  gnustep/XibFont.mm
  gnustep/XibLabel.mm
  gnustep/followed_rows.cpp)
